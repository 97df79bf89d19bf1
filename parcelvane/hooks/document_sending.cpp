#include "hooks/document_sending.h"

#include <Foundation/NSFileManager.h>
#include <Foundation/NSURL.h>

#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

namespace parcelvane::hooks {

void sendDocumentIfPresent(id chatScreen, NSURL* fileURL) {
    if (!NSFileManager::defaultManager()->fileExistsAtPath(fileURL->path())) return;
    // Without the host's class, alloc goes to nil and a nil attachment is sent.
    const Class attachmentClass = objc_getClass("WADocumentAttachment");
    const id fresh = objc::msgSend<id>(attachmentClass, objc::sel<"alloc">());
    const objc::Strong<objc_object> attachment = objc::adopt(objc::msgSend<id>(
        fresh, objc::sel<"initWithFileURL:transferFileOwnership:">(), fileURL, true));
    objc::msgSend<void>(chatScreen, objc::sel<"sendDocumentAttachment:">(), attachment.get());
}

}  // namespace parcelvane::hooks
