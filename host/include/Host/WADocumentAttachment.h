// A file to be sent into a chat as a document. Its name and size are read
// from the file when the attachment is made. Transferring ownership means
// the host may take the file over (move it into its own storage) instead of
// copying it.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <Host/ChatStore.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

class NSURL;

class WADocumentAttachment : public NSObject {
    OBJC_CLASS(WADocumentAttachment)

    WADocumentAttachment* initWithFileURL(NSURL* url, bool transferOwnership) {
        return objc::msgSend<WADocumentAttachment*>(
            this, objc::sel<"initWithFileURL:transferFileOwnership:">(), url, transferOwnership);
    }
    static objc::Strong<WADocumentAttachment> create(NSURL* url, bool transferOwnership) {
        return objc::adopt(
            objc::alloc<WADocumentAttachment>()->initWithFileURL(url, transferOwnership));
    }

    NSURL* fileURL() { return objc::msgSend<NSURL*>(this, objc::sel<"fileURL">()); }
    bool transfersFileOwnership() {
        return objc::msgSend<bool>(this, objc::sel<"transfersFileOwnership">());
    }
    // The file's name (the URL's last path component).
    NSString* fileName() { return objc::msgSend<NSString*>(this, objc::sel<"fileName">()); }
    // In bytes; 0 when the file could not be read.
    unsigned long long fileSize() {
        return objc::msgSend<unsigned long long>(this, objc::sel<"fileSize">());
    }

    // Without messages.
    const std::string& path() const noexcept { return path_; }
    bool fileExisted() const noexcept { return exists_; }

    WADocumentAttachment() = default;

  private:
    WADocumentAttachment* imp_initWithFileURL(NSURL* url, bool transferOwnership);
    NSURL* imp_fileURL() const { return url_.get(); }
    bool imp_transfersFileOwnership() const { return transfer_; }
    NSString* imp_fileName() const { return name_.get(); }
    unsigned long long imp_fileSize() const { return size_; }

    objc::Strong<NSURL> url_;
    objc::Strong<NSString> name_;
    std::string path_;
    bool transfer_ = false;
    bool exists_ = false;
    unsigned long long size_ = 0;
};

namespace host {

// A document send in two steps, so that the copy can run off the main
// thread: prepareDocument reads what the send needs from the attachment (on
// the thread that owns it) and gives the message to record as sending;
// storeDocument then puts the file into the media folder on any thread;
// once the message is recorded as sent, keepDocument lets go of a
// handed-over original, and when it cannot be recorded, undoDocument puts
// everything back.
struct PreparedDocument {
    std::filesystem::path source;
    std::filesystem::path home;
    std::filesystem::path folder;  // "<home>/Library/Media/<chat id>"
    bool transfersOwnership = false;
    Message message;  // name, size, types; sending
};
struct StoredDocument {
    std::filesystem::path path;
    std::uint64_t size = 0;
    bool moved = false;
};
// Called on the copying thread with the bytes copied so far and the total.
using CopyProgress = std::function<void(std::uint64_t copied, std::uint64_t total)>;

// Throws when the attachment names no file.
PreparedDocument prepareDocument(WADocumentAttachment& attachment,
                                 const std::filesystem::path& home, std::int64_t chatId);
// Moves or copies the file into the folder (see sendDocument); throws on
// failure, leaving nothing behind.
StoredDocument storeDocument(const PreparedDocument& prepared, const CopyProgress& progress = {});
void keepDocument(const PreparedDocument& prepared, const StoredDocument& stored);
void undoDocument(const PreparedDocument& prepared, const StoredDocument& stored);

// Sends the attachment's file into the chat: the file goes into
// "<home>/Library/Media/<chat id>/" under a name of its own, then a document
// message (name, size, uniform type, MIME type) is recorded. The file is
// moved when the attachment hands it over and it lies inside the container
// (the host's own Inbox copy); otherwise it is copied, so a file the user
// still owns is never taken. A copy is flushed to disk before it is recorded.
// On failure (no such file, a failed copy, a failed write to the store) it
// throws, nothing is recorded, no partial copy stays behind and a moved file
// goes back where it was.
Message sendDocument(ChatStore& store, const std::string& chat, WADocumentAttachment& attachment,
                     const std::filesystem::path& home);

}  // namespace host
