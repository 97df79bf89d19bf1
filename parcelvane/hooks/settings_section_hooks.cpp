#include "hooks/settings_section_hooks.h"

#include "hooks/hook_slots.h"

#include <objc/message.h>

namespace parcelvane::hooks {

void setupTableView(id self, SEL sel) {
    objc::callImp<void>(original::setupTableView, self, sel);
}

id addSectionAtTop(id, SEL) {
    return nullptr;
}

void didToggleEnableDisable(id, SEL, id) {}

}  // namespace parcelvane::hooks
