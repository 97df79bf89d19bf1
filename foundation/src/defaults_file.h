// Persistence of one NSUserDefaults: a binary property list, loaded when the
// defaults are created and replaced atomically and durably on every write.
//
// Binary rather than XML: it keeps dates to the microsecond (libplist's XML
// writer drops fractions of seconds), it is smaller and quicker to read and
// write, and `plistutil -i FILE` shows it as XML whenever a person wants to.
//
// Writes happen on a background thread about 50 ms after a change, so that
// bursts of changes cost one write and callers never wait for the disk, and
// in synchronize, which the caller chose to wait for. Pending changes are
// written when the process exits normally. A write that fails is tried again
// later, sooner at first, and at the next change; what it held stays pending.
//
// Several processes may share one file (two messengers on one container), so
// a write never replaces the file with this process's view: under a lock on
// "<path>.lock" it reads the file again, applies only the keys this process
// changed since its last write, and writes the result; values the others
// saved meanwhile are taken into this process's defaults.
#pragma once

#include "defaults_store.h"

#include <objc/result.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace foundation::detail {

class DefaultsFile {
  public:
    // Loads the file into the store. A file that cannot be read or is not a
    // dictionary is renamed "<path>.unreadable-<time>[-n]" (never replacing
    // anything), the defaults start empty and a message says so on stderr.
    DefaultsFile(std::string path, DefaultsStore& store);
    ~DefaultsFile();
    DefaultsFile(const DefaultsFile&) = delete;
    DefaultsFile& operator=(const DefaultsFile&) = delete;

    const std::string& path() const noexcept { return path_; }

    // The store changed: a write follows soon, on the writer thread.
    void changed();
    // Writes the current state now unless it is on disk already; true once it is.
    bool synchronize();
    // Why the latest write failed; empty when it succeeded.
    std::string lastError() const;
    // Stops the writer thread and writes what is pending. Idempotent.
    void shutdown();
    // Shuts down and writes nothing more: another object owns the file now.
    void close();

  private:
    void load();
    // `takeOthers`: adopt what other processes saved (not at exit, when
    // observers may be gone).
    bool flush(bool takeOthers = true);
    // Merges `state` into the file under its lock; answers the file's new content.
    objc::Result<Entries> merge(const DefaultsStore::SaveState& state);
    void run();
    void startWriterLocked();

    const std::string path_;
    DefaultsStore& store_;

    // One write at a time; guards the fields below it.
    std::mutex fileLock_;
    std::uint64_t written_ = 0;  // the store generation that is on disk
    std::string notSaving_;      // why this object never writes the file; empty: it does
    bool failing_ = false;       // the last write failed (reported once)

    mutable std::mutex errorLock_;  // not fileLock_: asking must not wait for a write
    std::string lastError_;

    // The writer thread's state.
    std::mutex writerLock_;
    std::condition_variable wake_;
    std::atomic<bool> pending_{false};
    bool stopping_ = false;
    std::thread writer_;
};

}  // namespace foundation::detail
