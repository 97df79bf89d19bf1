#include "defaults_file.h"

#include "file_io.h"
#include "property_list.h"

#include <Foundation/NSDictionary.h>
#include <Foundation/NSLog.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>

namespace foundation::detail {
namespace {

constexpr auto kCoalesceDelay = std::chrono::milliseconds(50);

// Every live file, so that pending changes are written when the process
// exits, before static objects go away under a running writer.
struct LiveFiles {
    std::mutex lock;
    std::set<DefaultsFile*> files;
};

LiveFiles& liveFiles() {
    static auto* live = new LiveFiles;  // never destroyed: used at exit
    return *live;
}

void shutdownAllAtExit() {
    LiveFiles& live = liveFiles();
    std::lock_guard guard(live.lock);
    for (DefaultsFile* file : live.files) file->shutdown();
}

void track(DefaultsFile* file) {
    static std::once_flag registered;
    std::call_once(registered, [] { std::atexit(&shutdownAllAtExit); });
    LiveFiles& live = liveFiles();
    std::lock_guard guard(live.lock);
    live.files.insert(file);
}

void untrack(DefaultsFile* file) {
    LiveFiles& live = liveFiles();
    std::lock_guard guard(live.lock);
    live.files.erase(file);
}

std::string timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
    return text;
}

}  // namespace

DefaultsFile::DefaultsFile(std::string path, DefaultsStore& store)
    : path_(std::move(path)), store_(store) {
    load();
    track(this);
}

DefaultsFile::~DefaultsFile() {
    untrack(this);
    shutdown();
}

void DefaultsFile::load() {
    int error = 0;
    const auto bytes = readFile(path_, &error);
    std::string problem;
    if (bytes) {
        objc::AutoreleasePool pool;
        const auto root = decodePropertyList(*bytes, PlistMutability::Immutable, nullptr, &problem);
        if (auto* dictionary = objc::cast<NSDictionary>(root.get())) {
            Entries entries;
            entries.reserve(dictionary->size());
            dictionary->forEach([&](id key, id value) {
                entries.emplace_back(objc::retained(static_cast<NSString*>(key)),
                                     objc::retained(value));
            });
            store_.load(std::move(entries));
            written_ = store_.snapshot().second;
            return;
        }
        if (root) {
            problem = std::string("its top level is an object of class ") +
                      object_getClassName(root.get()) + ", not a dictionary";
        }
    } else if (error == ENOENT) {
        written_ = store_.snapshot().second;
        return;  // nothing stored yet
    } else {
        problem = std::strerror(error);
    }
    // Keep the unreadable file for whoever wants to rescue it, and never
    // write over it.
    if (const auto aside = moveAside(path_, ".unreadable-" + timestamp())) {
        NSLog(NSSTR("NSUserDefaults: could not read %s (%s); it was kept as %s and the defaults "
                    "start empty"),
              path_.c_str(), problem.c_str(), aside->c_str());
        written_ = store_.snapshot().second;
    } else {
        NSLog(NSSTR("NSUserDefaults: could not read %s (%s) nor move it aside (%s); the defaults "
                    "start empty and will not be saved, so that the file is not overwritten"),
              path_.c_str(), problem.c_str(), std::strerror(errno));
        writable_ = false;
    }
}

void DefaultsFile::changed() {
    if (pending_.load(std::memory_order_acquire)) return;  // a write is already due
    std::lock_guard guard(writerLock_);
    if (stopping_ || pending_.load(std::memory_order_relaxed)) return;
    pending_.store(true, std::memory_order_release);
    if (!writer_.joinable()) startWriterLocked();
    wake_.notify_one();
}

void DefaultsFile::startWriterLocked() {
    writer_ = std::thread([this] { run(); });
}

void DefaultsFile::run() {
    std::unique_lock guard(writerLock_);
    for (;;) {
        wake_.wait(guard, [&] { return stopping_ || pending_.load(std::memory_order_relaxed); });
        if (stopping_) return;
        // Let a burst of changes settle into one write.
        if (wake_.wait_for(guard, kCoalesceDelay, [&] { return stopping_; })) return;
        // Cleared before the snapshot is taken, so a change after this point
        // schedules another write.
        pending_.store(false, std::memory_order_release);
        guard.unlock();
        flush();
        guard.lock();
    }
}

bool DefaultsFile::synchronize() {
    return flush();
}

void DefaultsFile::shutdown() {
    std::thread writer;
    {
        std::lock_guard guard(writerLock_);
        stopping_ = true;
        writer = std::move(writer_);
        wake_.notify_all();
    }
    if (writer.joinable()) writer.join();
    flush();
}

void DefaultsFile::close() {
    shutdown();
    std::lock_guard guard(fileLock_);
    writable_ = false;
}

bool DefaultsFile::flush() {
    std::lock_guard guard(fileLock_);
    if (!writable_) return false;
    auto [entries, generation] = store_.snapshot();
    if (generation == written_) return true;
    objc::AutoreleasePool pool;
    std::vector<std::pair<id, id>> pairs;
    pairs.reserve(entries.size());
    for (const auto& [key, value] : entries) pairs.emplace_back(key.get(), value.get());
    const auto dictionary = NSDictionary::create(pairs);
    std::string problem;
    const auto bytes = encodePropertyList(dictionary, PlistFormat::Binary, &problem);
    bool ok = bytes.has_value();
    if (ok) {
        ok = createDirectories(parentFolder(path_)) && writeFileAtomically(path_, *bytes, true);
        if (!ok) problem = std::strerror(errno);
    }
    if (!ok) {
        if (!failing_) {
            NSLog(NSSTR("NSUserDefaults: could not save %s: %s"), path_.c_str(), problem.c_str());
        }
        failing_ = true;
        return false;
    }
    failing_ = false;
    written_ = generation;
    return true;
}

}  // namespace foundation::detail
