// Whole-file reading and durable writing, for property lists and tables.
#pragma once

#include <objc/result.h>

#include <string>
#include <string_view>

namespace foundation::detail {

// Failures carry errno's value and its text.

// The file's bytes; the error's code is ENOENT when the file does not exist.
objc::Result<std::string> readFile(const std::string& path);

// Creates the folder and its missing parents, succeeding when it exists
// afterwards (ENOTDIR when a file is in the way).
objc::Result<void> createDirectories(const std::string& path);

// Replaces the file in one step: the bytes go to a new file in the same
// folder, which is flushed to disk and renamed over the old one; the folder is
// flushed too, so that after a crash either the old or the new file is there,
// whole. With durable false the flushes are skipped (atomic, not durable).
objc::Result<void> writeFileAtomically(const std::string& path, std::string_view bytes,
                                       bool durable = true);

// Renames the file to "<path><suffix>", adding "-1", "-2"... when that name is
// taken; never replaces an existing file. Answers the new name.
objc::Result<std::string> moveAside(const std::string& path, const std::string& suffix);

// The folder part of a path ("." for a bare name).
std::string parentFolder(const std::string& path);

// An exclusive advisory lock (flock) on a lock file, created when missing and
// never removed (removing it would let two writers lock different files).
// Held while the object lives; it serialises writers of a file that is
// replaced by rename, which is why the lock is not on that file itself.
class FileLock {
  public:
    // Waits for the lock; on failure locked() is false and errno says why.
    explicit FileLock(const std::string& lockPath);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    bool locked() const noexcept { return fd_ >= 0; }

  private:
    int fd_ = -1;
};

}  // namespace foundation::detail
