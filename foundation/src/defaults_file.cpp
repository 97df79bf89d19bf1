#include "defaults_file.h"

#include "file_io.h"
#include "property_list.h"

#include <Foundation/NSDictionary.h>
#include <Foundation/NSLog.h>

#include <algorithm>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>

namespace foundation::detail {
namespace {

constexpr auto kCoalesceDelay = std::chrono::milliseconds(50);
// A failed write is tried again after this, doubling up to the longest.
constexpr auto kFirstRetry = std::chrono::milliseconds(200);
constexpr auto kLongestRetry = std::chrono::milliseconds(10000);

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

// The values in `onDisk` that differ from this process's (null: removed
// there), leaving out the keys it changed itself.
Entries changedElsewhere(const DefaultsStore::SaveState& state, const Entries& onDisk) {
    KeyTable<StoredValue> mine;
    mine.reserve(state.values.size());
    for (const auto& [key, value] : state.values) mine.at(StoredKey{key, key->hash()}) = value;
    KeyTable<bool> changed;
    for (const auto& entry : state.changes) changed.at(StoredKey{entry.first, entry.first->hash()});
    Entries others;
    for (const auto& [key, value] : onDisk) {
        const KeyRef ref{key.get(), key->hash()};
        if (changed.find(ref) != nullptr) continue;
        const StoredValue taken = mine.take(ref);
        if (!taken || !objc::msgSend<bool>(taken.get(), objc::sel<"isEqual:">(), value.get())) {
            others.emplace_back(key, value);
        }
    }
    mine.forEach([&](const auto& key, const StoredValue&) {
        if (changed.find(KeyRef{key.get(), key->hash()}) == nullptr)
            others.emplace_back(key, nullptr);
    });
    return others;
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
    const auto bytes = readFile(path_);
    std::string problem;
    if (bytes) {
        objc::AutoreleasePool pool;
        const auto decoded = decodePropertyList(*bytes, PlistMutability::Immutable);
        const id root = decoded ? decoded->get() : nullptr;
        if (!decoded) problem = decoded.error().message;
        if (auto* dictionary = objc::cast<NSDictionary>(root)) {
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
                      object_getClassName(root) + ", not a dictionary";
        }
    } else if (bytes.error().code == ENOENT || bytes.error().code == ENOTDIR) {
        written_ = store_.snapshot().second;
        return;  // nothing stored yet
    } else {
        problem = bytes.error().message;
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
              path_.c_str(), problem.c_str(), aside.error().message.c_str());
        notSaving_ = "the file that is there could not be read nor moved aside";
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
    std::chrono::milliseconds retry{0};  // zero: nothing failed
    for (;;) {
        const auto due = [&] { return stopping_ || pending_.load(std::memory_order_relaxed); };
        if (retry.count() == 0) {
            wake_.wait(guard, due);
        } else {
            wake_.wait_for(guard, retry, due);
        }
        if (stopping_) return;
        // Let a burst of changes settle into one write.
        if (pending_.load(std::memory_order_relaxed) &&
            wake_.wait_for(guard, kCoalesceDelay, [&] { return stopping_; })) {
            return;
        }
        // Cleared before the snapshot is taken, so a change after this point
        // schedules another write.
        pending_.store(false, std::memory_order_release);
        guard.unlock();
        const bool ok = flush();
        guard.lock();
        retry = ok ? std::chrono::milliseconds(0)
                   : std::clamp(retry * 2, std::chrono::milliseconds(kFirstRetry), kLongestRetry);
    }
}

bool DefaultsFile::synchronize() {
    return flush();
}

std::string DefaultsFile::lastError() const {
    std::lock_guard guard(errorLock_);
    return lastError_;
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
    flush(false);
}

void DefaultsFile::close() {
    shutdown();
    std::lock_guard guard(fileLock_);
    notSaving_ = "another NSUserDefaults saves this file now";
}

bool DefaultsFile::flush(bool takeOthers) {
    std::unique_lock guard(fileLock_);
    std::string problem = notSaving_;
    if (problem.empty()) {
        const DefaultsStore::SaveState state = store_.saveState();
        if (state.generation == written_) return true;
        objc::AutoreleasePool pool;
        if (const auto onDisk = merge(state); !onDisk) {
            problem = onDisk.error().message;
        } else {
            failing_ = false;
            written_ = state.generation;
            {
                std::lock_guard errorGuard(errorLock_);
                lastError_.clear();
            }
            const Entries others = takeOthers ? changedElsewhere(state, *onDisk) : Entries();
            // Observers of the others' values may synchronize: not under the lock.
            guard.unlock();
            store_.saved(state.generation, others);
            return true;
        }
        if (!failing_) {
            NSLog(NSSTR("NSUserDefaults: could not save %s: %s; trying again later"), path_.c_str(),
                  problem.c_str());
        }
        failing_ = true;
    }
    std::lock_guard errorGuard(errorLock_);
    lastError_ = std::move(problem);
    return false;
}

objc::Result<Entries> DefaultsFile::merge(const DefaultsStore::SaveState& state) {
    const std::string folder = parentFolder(path_);
    if (const auto made = createDirectories(folder); !made) {
        return objc::Error{made.error().code,
                           "cannot make the folder " + folder + ": " + made.error().message};
    }
    const FileLock lock(path_ + ".lock");
    if (!lock.locked()) {
        return objc::Error{errno, "cannot lock " + path_ + ".lock: " + std::strerror(errno)};
    }
    // What is on disk now: other processes may have written since we read it.
    KeyTable<StoredValue> merged;
    Entries base;
    if (const auto bytes = readFile(path_)) {
        const auto root = decodePropertyList(*bytes, PlistMutability::Immutable);
        if (auto* dictionary = objc::cast<NSDictionary>(root ? root->get() : nullptr)) {
            base.reserve(dictionary->size());
            dictionary->forEach([&](id key, id value) {
                base.emplace_back(objc::retained(static_cast<NSString*>(key)),
                                  objc::retained(value));
            });
        } else {
            // Spoilt since it was loaded: keep it for rescue, and write what
            // this process knows.
            const auto aside = moveAside(path_, ".unreadable-" + timestamp());
            if (!aside) {
                return objc::Error{aside.error().code, "cannot move the unreadable file aside: " +
                                                           aside.error().message};
            }
            NSLog(NSSTR("NSUserDefaults: %s could not be read; it was kept as %s"), path_.c_str(),
                  aside->c_str());
            base = state.values;
        }
    } else if (bytes.error().code == ENOENT) {
        base = state.values;  // gone (or never written): what this process knows
    } else {
        return objc::Error{bytes.error().code, "cannot read it to merge: " + bytes.error().message};
    }
    merged.reserve(base.size() + state.changes.size());
    for (auto& [key, value] : base) {
        const NSUInteger hash = key->hash();
        merged.at(StoredKey{std::move(key), hash}) = std::move(value);
    }
    for (const auto& [key, value] : state.changes) {
        const NSUInteger hash = key->hash();
        if (value) {
            merged.at(StoredKey{key, hash}) = value;
        } else {
            merged.take(KeyRef{key.get(), hash});
        }
    }
    Entries entries;
    entries.reserve(merged.size());
    std::vector<std::pair<id, id>> pairs;
    pairs.reserve(merged.size());
    merged.forEach([&](const auto& key, const StoredValue& value) {
        entries.emplace_back(key, value);
        pairs.emplace_back(key.get(), value.get());
    });
    const auto dictionary = NSDictionary::create(pairs);
    const auto bytes = encodePropertyList(dictionary, PlistFormat::Binary);
    if (!bytes) return bytes.error();
    if (auto written = writeFileAtomically(path_, *bytes, true); !written) return written.error();
    return entries;
}

}  // namespace foundation::detail
