// A file to be sent into a chat as a document. Its name and size are read
// from the file when the attachment is made. Transferring ownership lets
// the host take over (move into its own storage) a file that is its own.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <Host/chat_store.h>
#include <Host/media_copy.h>

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
    std::filesystem::path source;  // the file itself when the host takes it over
    std::filesystem::path folder;  // "<home>/Library/Media/<chat id>"
    bool takeOver = false;         // one of the picker's Inbox copies: moved, not copied
    Message message;               // name, size, types; sending
};

// Throws when the attachment names no file.
PreparedDocument prepareDocument(WADocumentAttachment& attachment,
                                 const std::filesystem::path& home, std::int64_t chatId);
// Moves or copies the file into the folder (see sendDocument); throws on
// failure, leaving nothing behind.
StoredFile storeDocument(const PreparedDocument& prepared, const CopyProgress& progress = {});
void keepDocument(const PreparedDocument& prepared, const StoredFile& stored);
void undoDocument(const PreparedDocument& prepared, const StoredFile& stored);

// Sends the attachment's file into the chat: the file goes into
// "<home>/Library/Media/<chat id>/" under a name of its own (see storeFile),
// then a document message (name, size, uniform type, MIME type) is recorded.
// The file is moved only when the attachment hands it over and it is one of
// the picker's Inbox copies; any other file is copied and left untouched.
// Blocks for the whole copy. On failure (no such file, not a regular file,
// a failed or stalled copy, a failed write to the store) it throws, nothing
// is recorded, no partial copy stays behind and a moved file goes back.
Message sendDocument(ChatStore& store, const std::string& chat, WADocumentAttachment& attachment,
                     const std::filesystem::path& home, const CopyProgress& progress = {});

}  // namespace host
