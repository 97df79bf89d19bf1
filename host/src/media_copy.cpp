#include <Host/media_copy.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <poll.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <optional>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

namespace host {
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

// Large enough that the kernel copies at full speed, small enough that
// progress is reported often.
constexpr std::uint64_t kChunk = std::uint64_t{16} << 20;
constexpr std::size_t kBufferSize = std::size_t{1} << 20;
constexpr auto kReportInterval = std::chrono::milliseconds(100);

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd = -1) noexcept : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    int get() const noexcept { return fd_; }

  private:
    int fd_;
};

std::string randomHex() {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(random()));
    return hex;
}

// "<16 hex digits>-<name>": unique enough that a clash (checked for anyway)
// is a curiosity, and the original name still shows.
std::string uniqueName(const std::string& name) {
    // Keep within the usual 255-byte limit of a file name.
    return randomHex() + "-" + name.substr(0, 200);
}

void syncFolder(const fs::path& folder) {
    const FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() >= 0) ::fsync(dir.get());
}

// Only regular files are copied: a FIFO or a device never ends, and a
// folder is not a document.
void refuseUnlessRegular(mode_t mode, const fs::path& source) {
    if (S_ISREG(mode)) return;
    const auto refuse = [&](int code, const char* kind) {
        throw std::system_error(code, std::generic_category(),
                                source.string() + " is " + kind + ", not a regular file");
    };
    if (S_ISDIR(mode)) refuse(EISDIR, "a folder");
    if (S_ISCHR(mode) || S_ISBLK(mode)) refuse(ENODEV, "a device");
    if (S_ISFIFO(mode)) refuse(EINVAL, "a FIFO");
    if (S_ISSOCK(mode)) refuse(EINVAL, "a socket");
    refuse(EINVAL, "something else");
}

// Tells the caller how far the copy is, at most every kReportInterval.
class Meter {
  public:
    Meter(const CopyProgress& progress, std::uint64_t total) : progress_(progress), total_(total) {}
    void add(std::uint64_t bytes) {
        done_ += bytes;
        if (!progress_) return;
        const auto now = Clock::now();
        if (now - reported_ < kReportInterval) return;
        reported_ = now;
        progress_(done_, std::max(done_, total_));
    }
    void finish() {
        if (progress_) progress_(done_, done_);
    }

  private:
    const CopyProgress& progress_;
    std::uint64_t total_;
    std::uint64_t done_ = 0;
    Clock::time_point reported_ = Clock::now();
};

void writeAll(int out, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(out, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throwErrno("cannot write the copy");
        data += n;
        size -= static_cast<std::size_t>(n);
    }
}

// Reads to the end, waiting for data at most `stallTimeout` at a time.
// Regular files always poll ready; pipes and pseudo-files such as a kernel
// log do not, and are the ones that would otherwise block for good.
std::uint64_t streamToEnd(int in, int out, std::chrono::milliseconds stallTimeout, Meter& meter,
                          const std::string& label) {
    std::vector<char> buffer(kBufferSize);
    std::uint64_t copied = 0;
    auto lastData = Clock::now();
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            stallTimeout - (Clock::now() - lastData));
        pollfd ready{in, POLLIN, 0};
        const int wait = static_cast<int>(std::min<std::int64_t>(left.count(), INT_MAX));
        const int polled = wait > 0 ? ::poll(&ready, 1, wait) : 0;
        if (polled < 0 && errno == EINTR) continue;
        if (polled < 0) throwErrno("cannot read " + label);
        if (polled == 0) {
            const auto ms = stallTimeout.count();
            throw std::system_error(ETIMEDOUT, std::generic_category(),
                                    label + " gave no data for " +
                                        (ms % 1000 == 0 ? std::to_string(ms / 1000) + " s"
                                                        : std::to_string(ms) + " ms"));
        }
        const ssize_t n = ::read(in, buffer.data(), buffer.size());
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n < 0) throwErrno("cannot read " + label);
        if (n == 0) return copied;
        writeAll(out, buffer.data(), static_cast<std::size_t>(n));
        copied += static_cast<std::uint64_t>(n);
        meter.add(static_cast<std::uint64_t>(n));
        lastData = Clock::now();
    }
}

// Copies the bytes [from, to) to the same offsets; answers where the source
// ended (`to` unless it is shorter than it was).
std::uint64_t copyRange(int in, int out, std::uint64_t from, std::uint64_t to, bool& inKernel,
                        std::vector<char>& buffer, Meter& meter, const std::string& label) {
    while (from < to) {
        const std::uint64_t chunk = std::min(to - from, kChunk);
        ssize_t n = 0;
        if (inKernel) {
            loff_t inOffset = static_cast<loff_t>(from);
            loff_t outOffset = inOffset;
            n = ::copy_file_range(in, &inOffset, out, &outOffset, chunk, 0);
            if (n < 0 && errno == EINTR) continue;
            // Not for these files (another kind of file system) or nothing
            // came (a pseudo-file on some kernels): read them ourselves.
            if (n <= 0 && (n == 0 || errno == EXDEV || errno == ENOSYS || errno == EINVAL ||
                           errno == EOPNOTSUPP || errno == EPERM)) {
                inKernel = false;
                continue;
            }
            if (n < 0) throwErrno("cannot copy " + label);
        } else {
            if (buffer.empty()) buffer.resize(kBufferSize);
            n = ::pread(in, buffer.data(), std::min<std::uint64_t>(chunk, buffer.size()),
                        static_cast<off_t>(from));
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) throwErrno("cannot read " + label);
            if (n == 0) return from;
            for (ssize_t done = 0; done < n;) {
                const ssize_t w =
                    ::pwrite(out, buffer.data() + done, static_cast<std::size_t>(n - done),
                             static_cast<off_t>(from) + done);
                if (w < 0 && errno == EINTR) continue;
                if (w < 0) throwErrno("cannot write the copy");
                done += w;
            }
        }
        from += static_cast<std::uint64_t>(n);
        meter.add(static_cast<std::uint64_t>(n));
    }
    return to;
}

// Copies a regular file of `size` bytes (as seen when it was opened) with
// its holes: a clone where the file system shares blocks, else only the
// data extents, in the kernel where it can. Answers the copy's size.
std::uint64_t copyRegular(int in, int out, std::uint64_t size, std::chrono::milliseconds stall,
                          Meter& meter, const std::string& label) {
    if (size > 0 && ::ioctl(out, FICLONE, in) == 0) {
        meter.add(size);
        return size;
    }
    // Read ahead generously where the data is not in memory yet.
    ::posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
    bool inKernel = true;
    std::vector<char> buffer;
    std::uint64_t position = 0;
    while (position < size) {
        const off_t data = ::lseek(in, static_cast<off_t>(position), SEEK_DATA);
        std::uint64_t start = position;
        std::uint64_t end = size;
        if (data >= 0) {
            start = static_cast<std::uint64_t>(data);
            const off_t hole = ::lseek(in, data, SEEK_HOLE);
            if (hole >= 0) end = std::min(size, static_cast<std::uint64_t>(hole));
        } else if (errno == ENXIO) {
            start = size;  // only a hole is left
        } else if (errno != EINVAL) {
            throwErrno("cannot read " + label);
        }
        meter.add(std::min(start, size) - position);
        if (start >= size) {
            position = size;
            break;
        }
        const std::uint64_t reached =
            copyRange(in, out, start, end, inKernel, buffer, meter, label);
        position = reached;
        if (reached < end) break;  // the file got shorter
    }
    // Whatever lies past the size seen at the start: a file still growing,
    // or a pseudo-file that reports no size.
    if (::lseek(in, static_cast<off_t>(position), SEEK_SET) < 0 ||
        ::lseek(out, static_cast<off_t>(position), SEEK_SET) < 0) {
        throwErrno("cannot read " + label);
    }
    const std::uint64_t length = position + streamToEnd(in, out, stall, meter, label);
    // A trailing hole has no extent to copy: the size makes it.
    if (::ftruncate(out, static_cast<off_t>(length)) != 0) throwErrno("cannot write the copy");
    return length;
}

// A file being written in a folder, that gets a name there only when
// complete: an unnamed file where the file system can make one (a killed
// run leaves nothing), else a partial-copy name that start-up clears.
class PendingFile {
  public:
    explicit PendingFile(const fs::path& folder) {
        fd_ = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0644);
        if (fd_ >= 0) return;
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
            throwErrno("cannot write into " + folder.string());
        }
        for (;;) {
            const fs::path path = folder / (std::string(kPartialCopyPrefix) + randomHex());
            fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
            if (fd_ >= 0) {
                named_ = path;
                return;
            }
            if (errno != EEXIST) throwErrno("cannot write into " + folder.string());
        }
    }
    ~PendingFile() {
        if (!named_.empty()) ::unlink(named_.c_str());
        if (fd_ >= 0) ::close(fd_);
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    int fd() const noexcept { return fd_; }

    // Gives the finished file a free name made from `name`; never replaces.
    fs::path commit(const fs::path& folder, const std::string& name) {
        for (;;) {
            const fs::path target = folder / uniqueName(name);
            if (link(target)) {
                named_.clear();
                return target;
            }
            if (errno != EEXIST) throwErrno("cannot store " + target.string());
        }
    }

  private:
    bool link(const fs::path& target) const {
        if (named_.empty()) {
            const std::string self = "/proc/self/fd/" + std::to_string(fd_);
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) == 0)
                return true;
            if (errno != ENOENT) return false;
            // No /proc: the direct way, which needs the privilege to use it.
            return ::linkat(fd_, "", AT_FDCWD, target.c_str(), AT_EMPTY_PATH) == 0;
        }
        if (::renameat2(AT_FDCWD, named_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
            return true;
        if (errno != EINVAL && errno != ENOSYS) return false;
        // No RENAME_NOREPLACE here: a hard link fails rather than replaces.
        if (::link(named_.c_str(), target.c_str()) != 0) return false;
        ::unlink(named_.c_str());
        return true;
    }

    int fd_ = -1;
    fs::path named_;
};

// Opens without waiting (a FIFO's open would wait for a writer) and only
// what is a regular file both before and after opening.
FileDescriptor openRegular(const fs::path& source, struct stat& info) {
    const std::string label = source.string();
    if (::stat(source.c_str(), &info) != 0) throwErrno("cannot read " + label);
    refuseUnlessRegular(info.st_mode, source);
    FileDescriptor in(::open(source.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (in.get() < 0) throwErrno("cannot read " + label);
    if (::fstat(in.get(), &info) != 0) throwErrno("cannot read " + label);
    refuseUnlessRegular(info.st_mode, source);
    // Reads from a regular file block as usual; the stall time-out and poll
    // take care of the ones that never end.
    const int flags = ::fcntl(in.get(), F_GETFL);
    if (flags < 0 || ::fcntl(in.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) {
        throwErrno("cannot read " + label);
    }
    return in;
}

// Moves without replacing anything; answers the new path, or nothing when
// the file cannot be moved there (another file system).
std::optional<fs::path> moveInto(const fs::path& source, const fs::path& folder,
                                 const std::string& name) {
    for (;;) {
        const fs::path target = folder / uniqueName(name);
        if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) ==
            0) {
            return target;
        }
        if (errno == EEXIST) continue;
        if (errno == EXDEV) return std::nullopt;
        if (errno == EINVAL || errno == ENOSYS) {
            if (::link(source.c_str(), target.c_str()) == 0) {
                ::unlink(source.c_str());
                return target;
            }
            if (errno == EEXIST) continue;
            if (errno == EXDEV) return std::nullopt;
        }
        throwErrno("cannot move " + source.string());
    }
}

}  // namespace

StoredFile storeFile(const fs::path& source, const fs::path& folder, const std::string& name,
                     bool takeOver, const CopyProgress& progress,
                     std::chrono::milliseconds stallTimeout) {
    if (takeOver) {
        struct stat info {};
        if (::lstat(source.c_str(), &info) != 0) throwErrno("cannot read " + source.string());
        refuseUnlessRegular(info.st_mode, source);
        if (std::optional<fs::path> moved = moveInto(source, folder, name)) {
            syncFolder(folder);
            const auto size = static_cast<std::uint64_t>(info.st_size);
            if (progress) progress(size, size);
            return {std::move(*moved), size, true};
        }
    }
    struct stat info {};
    const FileDescriptor in = openRegular(source, info);
    PendingFile out(folder);
    Meter meter(progress, static_cast<std::uint64_t>(info.st_size));
    const std::uint64_t size =
        copyRegular(in.get(), out.fd(), static_cast<std::uint64_t>(info.st_size), stallTimeout,
                    meter, source.string());
    // No data flush, as cp: the user's file stays where it was, so a crash
    // can cost the chat's copy but nothing of the user's, and waiting for a
    // large file to reach the disk would double the time a send takes.
    fs::path stored = out.commit(folder, name);
    syncFolder(folder);
    meter.finish();
    return {std::move(stored), size, false};
}

std::uint64_t copyToEnd(int in, int out, std::chrono::milliseconds stallTimeout,
                        const CopyProgress& progress) {
    Meter meter(progress, 0);
    const std::uint64_t copied = streamToEnd(in, out, stallTimeout, meter, "the source");
    meter.finish();
    return copied;
}

void removeLeftoverCopies(const fs::path& mediaRoot) {
    std::error_code error;
    for (fs::directory_iterator chats(mediaRoot, error), end; !error && chats != end;
         chats.increment(error)) {
        if (!chats->is_directory(error)) continue;
        std::error_code inner;
        for (fs::directory_iterator files(chats->path(), inner); !inner && files != end;
             files.increment(inner)) {
            const std::string file = files->path().filename().string();
            if (file.rfind(kPartialCopyPrefix, 0) == 0) {
                std::error_code ignored;
                fs::remove(files->path(), ignored);
            }
        }
    }
}

}  // namespace host
