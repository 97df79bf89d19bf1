#include <Host/WADocumentAttachment.h>

#include <Foundation/NSURL.h>

#include <MobileCoreServices/UTType.h>

#include <UIKit/UIDocumentPickerViewController.h>

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
        .property<&C::url_>("fileURL", objc::Readonly | objc::Nonatomic)
        .property<&C::transfer_>("transfersFileOwnership", objc::Readonly | objc::Nonatomic)
        .property<&C::name_>("fileName", objc::Readonly | objc::Nonatomic)
        .property<&C::size_>("fileSize", objc::Readonly | objc::Nonatomic);
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

PreparedDocument prepareDocument(WADocumentAttachment& attachment, const fs::path& home,
                                 std::int64_t chatId) {
    PreparedDocument prepared;
    prepared.source = attachment.path();
    if (prepared.source.empty()) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                "the attachment is not a file");
    }
    prepared.folder = home / "Library" / "Media" / std::to_string(chatId);
    // Only the picker's own import copies are the host's to take; any other
    // file, wherever it lies (even in Documents or Library), is the user's.
    prepared.takeOver =
        attachment.transfersFileOwnership() &&
        isInside(prepared.source, UIDocumentPickerViewController::inboxFolder(home.string()));
    if (prepared.takeOver) {
        // The file itself, not a link to it, is what moves.
        std::error_code error;
        if (fs::path real = fs::weakly_canonical(prepared.source, error); !error) {
            prepared.source = std::move(real);
        }
    }
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

StoredFile storeDocument(const PreparedDocument& prepared, const CopyProgress& progress) {
    fs::create_directories(prepared.folder);
    return storeFile(prepared.source, prepared.folder, prepared.message.text, prepared.takeOver,
                     progress);
}

void keepDocument(const PreparedDocument& prepared, const StoredFile& stored) {
    // An Inbox copy on another file system was copied: the host owns it and
    // keeps one copy.
    if (prepared.takeOver && !stored.moved) {
        std::error_code error;
        fs::remove(prepared.source, error);
    }
}

void undoDocument(const PreparedDocument& prepared, const StoredFile& stored) {
    if (stored.moved) {
        ::rename(stored.path.c_str(), prepared.source.c_str());
    } else {
        std::error_code error;
        fs::remove(stored.path, error);
    }
}

Message sendDocument(ChatStore& store, const std::string& chat, WADocumentAttachment& attachment,
                     const fs::path& home, const CopyProgress& progress) {
    PreparedDocument prepared = prepareDocument(attachment, home, store.chatId(chat));
    const StoredFile stored = storeDocument(prepared, progress);
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
