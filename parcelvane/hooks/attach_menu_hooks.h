// The chat screen's attach menu: the attach button, the action sheet it
// opens, and the added method that sends a file from the file system.
#pragma once

#include <objc/types.h>

namespace parcelvane::hooks {

// -[WAChatSessionViewController chatBarManagerWantsToAttachMedia:]
void chatBarManagerWantsToAttachMedia(id self, SEL sel, id manager);

// -[WAChatSessionViewController showActionSheet:]
void showActionSheet(id self, SEL sel, id sheet);

// Added: -[WAChatSessionViewController sendParcelvaneFile], "v@:".
void sendParcelvaneFile(id self, SEL sel);

}  // namespace parcelvane::hooks
