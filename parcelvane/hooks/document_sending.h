// Sending a file into a chat as a document attachment, shared by the
// document menu's pick and the file browser's choice.
#pragma once

#include <objc/types.h>

class NSURL;

namespace parcelvane::hooks {

// When a file exists at the URL's path, makes a WADocumentAttachment (the
// host's class, looked up by name now) from the URL with the file's
// ownership transferred and sends it with the chat screen's
// sendDocumentAttachment:. A missing file is dropped silently.
void sendDocumentIfPresent(id chatScreen, NSURL* fileURL);

}  // namespace parcelvane::hooks
