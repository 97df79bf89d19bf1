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
// written when the process exits normally.
#pragma once

#include "defaults_store.h"

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
    // Stops the writer thread and writes what is pending. Idempotent.
    void shutdown();
    // Shuts down and writes nothing more: another object owns the file now.
    void close();

  private:
    void load();
    bool flush();
    void run();
    void startWriterLocked();

    const std::string path_;
    DefaultsStore& store_;

    // One write at a time; guards the fields below it.
    std::mutex fileLock_;
    std::uint64_t written_ = 0;  // the store generation that is on disk
    bool writable_ = true;       // false when an unreadable file could not be moved aside
    bool failing_ = false;       // the last write failed (reported once)

    // The writer thread's state.
    std::mutex writerLock_;
    std::condition_variable wake_;
    std::atomic<bool> pending_{false};
    bool stopping_ = false;
    std::thread writer_;
};

}  // namespace foundation::detail
