#include <Host/WADocumentAttachment.h>

#include <Foundation/NSURL.h>

#include <MobileCoreServices/UTType.h>

#include <objc/image.h>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <vector>

OBJC_DEFINE_CLASS(WADocumentAttachment, NSObject, "WADocumentAttachment")
OBJC_REGISTER_CLASS(WADocumentAttachment)

void WADocumentAttachment::objcDefine(objc::ClassBuilder<WADocumentAttachment>& b) {
    using C = WADocumentAttachment;
    b.method<&C::imp_initWithFileURL>("initWithFileURL:transferFileOwnership:")
        .method<&C::imp_fileURL>("fileURL")
        .method<&C::imp_transfersFileOwnership>("transfersFileOwnership")
        .method<&C::imp_fileName>("fileName")
        .method<&C::imp_fileSize>("fileSize");
}

WADocumentAttachment* WADocumentAttachment::imp_initWithFileURL(NSURL* url,
                                                                bool transferOwnership) {
    url_ = objc::retained(url);
    transfer_ = transferOwnership;
    if (url == nullptr) return this;
    name_ = objc::retained(url->lastPathComponent());
    if (NSString* path = url->isFileURL() ? url->path() : nullptr) {
        path_ = path->utf8();
        std::error_code error;
        const auto status = std::filesystem::status(path_, error);
        exists_ = !error && std::filesystem::is_regular_file(status);
        if (exists_) {
            const auto size = std::filesystem::file_size(path_, error);
            size_ = error ? 0 : size;
        }
    }
    return this;
}

namespace host {
namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) noexcept : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const noexcept { return fd_; }

  private:
    int fd_;
};

// "<16 hex digits>-<name>": unique enough that a clash (checked for anyway)
// is a curiosity, and the original name still shows.
std::string uniqueName(const std::string& name) {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    char prefix[17];
    std::snprintf(prefix, sizeof prefix, "%016llx", static_cast<unsigned long long>(random()));
    // Keep within the usual 255-byte limit of a file name.
    return std::string(prefix) + "-" + name.substr(0, 200);
}

bool isInside(const fs::path& file, const fs::path& folder) {
    std::error_code error;
    const fs::path f = fs::weakly_canonical(file, error);
    if (error) return false;
    const fs::path d = fs::weakly_canonical(folder, error);
    if (error) return false;
    const auto [end, _] = std::mismatch(d.begin(), d.end(), f.begin(), f.end());
    return end == d.end() || (std::next(end) == d.end() && end->empty());
}

void syncFolder(const fs::path& folder) {
    const FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() >= 0) ::fsync(dir.get());
}

// Copies the rest of `in` to `out`: in the kernel where it can, in large
// blocks otherwise. Answers the bytes copied.
std::uint64_t copyContents(int in, int out, std::uint64_t total, const CopyProgress& progress) {
    std::uint64_t copied = 0;
    for (;;) {
        const ssize_t n = ::copy_file_range(in, nullptr, out, nullptr, 1 << 30, 0);
        if (n > 0) {
            copied += static_cast<std::uint64_t>(n);
            if (progress) progress(copied, total);
            continue;
        }
        if (n == 0) return copied;
        if (errno == EINTR) continue;
        // Not for these files (another file system, an old kernel): copy by hand.
        if (copied == 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL ||
                            errno == EOPNOTSUPP || errno == EPERM)) {
            break;
        }
        throwErrno("copy");
    }
    std::vector<char> buffer(std::size_t{4} << 20);
    for (;;) {
        const ssize_t n = ::read(in, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throwErrno("read");
        if (n == 0) return copied;
        for (ssize_t done = 0; done < n;) {
            const ssize_t w =
                ::write(out, buffer.data() + done, static_cast<std::size_t>(n - done));
            if (w < 0 && errno == EINTR) continue;
            if (w < 0) throwErrno("write");
            done += w;
        }
        copied += static_cast<std::uint64_t>(n);
        if (progress) progress(copied, total);
    }
}

// Copies to a new file in the folder; answers its path and size. A failed
// copy leaves nothing behind. The data is not flushed here: the user's own
// file stays where it was, so a crash can cost the chat's copy but nothing
// of the user's, and waiting for a whole large file to reach the disk would
// double the time a send takes (the kernel writes it back as it does for cp).
std::pair<fs::path, std::uint64_t> copyInto(const fs::path& source, const fs::path& folder,
                                            const std::string& name, const CopyProgress& progress) {
    const FileDescriptor in(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (in.get() < 0) throwErrno("open " + source.string());
    struct stat info {};
    if (::fstat(in.get(), &info) != 0) throwErrno("stat " + source.string());
    if (!S_ISREG(info.st_mode)) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                source.string() + " is not a file");
    }
    for (;;) {
        const fs::path target = folder / uniqueName(name);
        const FileDescriptor out(
            ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        if (out.get() < 0 && errno == EEXIST) continue;
        if (out.get() < 0) throwErrno("create " + target.string());
        try {
            const std::uint64_t size = copyContents(
                in.get(), out.get(), static_cast<std::uint64_t>(info.st_size), progress);
            syncFolder(folder);
            return {target, size};
        } catch (...) {
            ::unlink(target.c_str());
            throw;
        }
    }
}

// Moves without replacing anything; answers the new path, or nothing when
// the file cannot be moved there (another file system).
std::optional<fs::path> moveInto(const fs::path& source, const fs::path& folder,
                                 const std::string& name) {
    for (;;) {
        const fs::path target = folder / uniqueName(name);
        if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) ==
            0) {
            syncFolder(folder);
            return target;
        }
        if (errno == EEXIST) continue;
        if (errno == EXDEV) return std::nullopt;
        if (errno == EINVAL || errno == ENOSYS) {
            // No RENAME_NOREPLACE here: a hard link fails rather than replaces.
            if (::link(source.c_str(), target.c_str()) == 0) {
                ::unlink(source.c_str());
                syncFolder(folder);
                return target;
            }
            if (errno == EEXIST) continue;
            if (errno == EXDEV) return std::nullopt;
        }
        throwErrno("move " + source.string());
    }
}

std::string tagType(NSString* tagClass, const std::string& tag) {
    const objc::Strong<NSString> type = objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(tagClass, NSString::create(tag).get(), nullptr));
    return type ? type->utf8() : std::string("public.data");
}

}  // namespace

PreparedDocument prepareDocument(WADocumentAttachment& attachment, const fs::path& home,
                                 std::int64_t chatId) {
    PreparedDocument prepared;
    prepared.source = attachment.path();
    if (prepared.source.empty()) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                "the attachment is not a file");
    }
    prepared.home = home;
    prepared.folder = home / "Library" / "Media" / std::to_string(chatId);
    prepared.transfersOwnership = attachment.transfersFileOwnership();
    NSString* fileName = attachment.fileName();
    const std::string name =
        fileName != nullptr ? fileName->utf8() : prepared.source.filename().string();
    Message& message = prepared.message;
    message = Message::document(name, {}, attachment.fileSize());
    message.state = Message::State::Sending;
    // An unknown (or missing) extension gets a dynamic identifier.
    std::string extension = fs::path(name).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    message.uniformType = tagType(kUTTagClassFilenameExtension, extension);
    const objc::Strong<NSString> mime = objc::adopt(UTTypeCopyPreferredTagWithClass(
        NSString::create(message.uniformType).get(), kUTTagClassMIMEType));
    if (mime) message.mimeType = mime->utf8();
    return prepared;
}

StoredDocument storeDocument(const PreparedDocument& prepared, const CopyProgress& progress) {
    const fs::path& source = prepared.source;
    std::error_code error;
    if (!fs::is_regular_file(source, error)) {
        throw std::system_error(
            error ? error : std::make_error_code(std::errc::no_such_file_or_directory),
            source.string());
    }
    const std::string& name = prepared.message.text;
    fs::create_directories(prepared.folder);
    StoredDocument stored;
    std::optional<fs::path> moved;
    if (prepared.transfersOwnership && isInside(source, prepared.home)) {
        moved = moveInto(source, prepared.folder, name);
    }
    if (moved) {
        stored.path = *moved;
        stored.size = fs::file_size(stored.path);
        stored.moved = true;
    } else {
        std::tie(stored.path, stored.size) = copyInto(source, prepared.folder, name, progress);
    }
    return stored;
}

void keepDocument(const PreparedDocument& prepared, const StoredDocument& stored) {
    // The copy came from a handed-over file on another file system: the
    // host owns it now, and keeps one copy.
    if (!stored.moved && prepared.transfersOwnership && isInside(prepared.source, prepared.home)) {
        std::error_code error;
        fs::remove(prepared.source, error);
    }
}

void undoDocument(const PreparedDocument& prepared, const StoredDocument& stored) {
    if (stored.moved) {
        ::rename(stored.path.c_str(), prepared.source.c_str());
    } else {
        std::error_code error;
        fs::remove(stored.path, error);
    }
}

Message sendDocument(ChatStore& store, const std::string& chat, WADocumentAttachment& attachment,
                     const fs::path& home) {
    PreparedDocument prepared = prepareDocument(attachment, home, store.chatId(chat));
    const StoredDocument stored = storeDocument(prepared);
    Message& message = prepared.message;
    message.state = Message::State::Sent;
    message.filePath = stored.path.string();
    message.fileSize = stored.size;
    try {
        message.id = store.append(chat, message);
    } catch (...) {
        undoDocument(prepared, stored);
        throw;
    }
    keepDocument(prepared, stored);
    return message;
}

}  // namespace host
