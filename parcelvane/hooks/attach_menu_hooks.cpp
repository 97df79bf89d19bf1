#include "hooks/attach_menu_hooks.h"

#include "hooks/hook_slots.h"

#include <objc/message.h>

namespace parcelvane::hooks {

void chatBarManagerWantsToAttachMedia(id self, SEL sel, id manager) {
    objc::callImp<void>(original::chatBarManagerWantsToAttachMedia, self, sel, manager);
}

void showActionSheet(id self, SEL sel, id sheet) {
    objc::callImp<void>(original::showActionSheet, self, sel, sheet);
}

void sendParcelvaneFile(id, SEL) {}

}  // namespace parcelvane::hooks
