#include <Host/WADocumentAttachment.h>

#include <Foundation/NSBundle.h>
#include <Foundation/NSURL.h>

#include <MobileCoreServices/UTType.h>

#include <objc/image.h>

#include <stdio.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

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

bool isInside(const fs::path& file, const fs::path& folder) {
    std::error_code error;
    const fs::path f = fs::weakly_canonical(file, error);
    if (error) return false;
    const fs::path d = fs::weakly_canonical(folder, error);
    if (error) return false;
    const auto [end, _] = std::mismatch(d.begin(), d.end(), f.begin(), f.end());
    return end == d.end() || (std::next(end) == d.end() && end->empty());
}

std::string tagType(NSString* tagClass, const std::string& tag) {
    const objc::Strong<NSString> type = objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(tagClass, NSString::create(tag).get(), nullptr));
    return type ? type->utf8() : std::string("public.data");
}

}  // namespace

fs::path inboxFolder(const fs::path& home) {
    objc::AutoreleasePool pool;
    NSString* identifier = NSBundle::mainBundle()->bundleIdentifier();
    const std::string prefix = identifier != nullptr ? identifier->utf8() + "-" : std::string();
    return home / "tmp" / (prefix + "Inbox");
}

Message sendDocument(ChatStore& store, const std::string& chat, WADocumentAttachment& attachment,
                     const fs::path& home, const CopyProgress& progress) {
    const fs::path source = attachment.path();
    if (source.empty()) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                "the attachment is not a file");
    }
    NSString* fileName = attachment.fileName();
    const std::string name = fileName != nullptr ? fileName->utf8() : source.filename().string();
    const fs::path folder = home / "Library" / "Media" / std::to_string(store.chatId(chat));
    fs::create_directories(folder);

    // Only the picker's own import copies are the host's to take; any other
    // file, wherever it lies (even in Documents or Library), is the user's.
    std::error_code error;
    const bool takeOver =
        attachment.transfersFileOwnership() && isInside(source, inboxFolder(home));
    // The file itself, not a link to it, is what moves.
    fs::path original = source;
    if (takeOver) {
        if (fs::path real = fs::weakly_canonical(source, error); !error) original = std::move(real);
    }
    const StoredFile stored = storeFile(original, folder, name, takeOver, progress);

    Message message = Message::document(name, stored.path.string(), stored.size);
    // An unknown (or missing) extension gets a dynamic identifier.
    std::string extension = fs::path(name).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    message.uniformType = tagType(kUTTagClassFilenameExtension, extension);
    const objc::Strong<NSString> mime = objc::adopt(UTTypeCopyPreferredTagWithClass(
        NSString::create(message.uniformType).get(), kUTTagClassMIMEType));
    if (mime) message.mimeType = mime->utf8();
    try {
        store.append(chat, message);
        // An Inbox copy on another file system was copied: the host owns it
        // and keeps one copy.
        if (takeOver && !stored.moved) fs::remove(original, error);
    } catch (...) {
        if (stored.moved) {
            ::rename(stored.path.c_str(), original.c_str());
        } else {
            fs::remove(stored.path, error);
        }
        throw;
    }
    return message;
}

}  // namespace host
