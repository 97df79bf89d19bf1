#include "file_io.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

namespace foundation::detail {
namespace {

// Closes a descriptor at the end of its scope.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }
    explicit operator bool() const { return fd_ >= 0; }
    bool close() {
        if (fd_ < 0) return true;
        const int result = ::close(std::exchange(fd_, -1));
        return result == 0;
    }

  private:
    int fd_;
};

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

// The failure errno describes now.
objc::Error systemError() {
    const int code = errno;
    return objc::Error{code, std::strerror(code)};
}

std::string baseName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::string parentFolder(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

objc::Result<std::string> readFile(const std::string& path) {
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd) return systemError();
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) return systemError();
    if (S_ISDIR(info.st_mode)) {
        errno = EISDIR;
        return systemError();
    }
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(info.st_size));
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd.get(), buffer, sizeof buffer);
        if (n < 0) {
            if (errno == EINTR) continue;
            return systemError();
        }
        if (n == 0) break;
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
    return bytes;
}

objc::Result<void> createDirectories(const std::string& path) {
    if (path.empty()) {
        errno = ENOENT;
        return systemError();
    }
    struct stat info {};
    const auto isFolder = [&]() -> objc::Result<void> {
        if (S_ISDIR(info.st_mode)) return {};
        errno = ENOTDIR;  // something else is in the way
        return systemError();
    };
    if (::stat(path.c_str(), &info) == 0) return isFolder();
    const std::string parent = parentFolder(path);
    if (parent != path && parent != ".") {
        if (auto made = createDirectories(parent); !made) return made;
    }
    if (::mkdir(path.c_str(), 0755) == 0 || errno == EEXIST) {
        if (::stat(path.c_str(), &info) != 0) return systemError();
        return isFolder();
    }
    return systemError();
}

objc::Result<void> writeFileAtomically(const std::string& path, std::string_view bytes,
                                       bool durable) {
    static std::atomic<unsigned> counter{0};
    const std::string folder = parentFolder(path);
    // A hidden name unique to this process and call: concurrent writers never
    // share a temporary file.
    const std::string temporary = folder + "/." + baseName(path) + ".tmp-" +
                                  std::to_string(::getpid()) + "-" +
                                  std::to_string(counter.fetch_add(1));
    FileDescriptor fd(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_TRUNC, 0644));
    if (!fd) return systemError();
    bool ok = writeAll(fd.get(), bytes) && (!durable || ::fsync(fd.get()) == 0);
    ok = fd.close() && ok;
    if (ok) ok = ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!ok) {
        const objc::Error error = systemError();
        ::unlink(temporary.c_str());
        return error;
    }
    if (durable) {
        // The rename itself lives in the folder.
        const FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (dir) ::fsync(dir.get());
    }
    return {};
}

objc::Result<std::string> moveAside(const std::string& path, const std::string& suffix) {
    for (int n = 0; n < 1000; ++n) {
        std::string target = path + suffix;
        if (n > 0) target += "-" + std::to_string(n);
        // renameat2 with RENAME_NOREPLACE never replaces; where the file system
        // lacks it, a hard link fails just as safely when the name is taken.
        if (::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
            return target;
        }
        if (errno == EEXIST) continue;
        if (errno != EINVAL && errno != ENOSYS) return systemError();
        if (::link(path.c_str(), target.c_str()) == 0) {
            ::unlink(path.c_str());
            return target;
        }
        if (errno != EEXIST) return systemError();
    }
    errno = EEXIST;
    return systemError();
}

FileLock::FileLock(const std::string& lockPath) {
    FileDescriptor fd(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (!fd) return;
    int result;
    do {
        result = ::flock(fd.get(), LOCK_EX);
    } while (result != 0 && errno == EINTR);
    if (result == 0) fd_ = fd.release();
}

FileLock::~FileLock() {
    if (fd_ >= 0) ::close(fd_);
}

}  // namespace foundation::detail
