// The library's section in the host's Settings screen: the table set-up, the
// added section insertion and the added switch action.
#pragma once

#include <objc/types.h>

namespace parcelvane::hooks {

// -[WASettingsViewController setupTableView]
void setupTableView(id self, SEL sel);

// Added: -[WAStaticTableViewController addSectionAtTop], "@@:".
id addSectionAtTop(id self, SEL sel);

// Added: -[WASettingsViewController _didToggleEnableDisable:], "v@:@".
void didToggleEnableDisable(id self, SEL sel, id sender);

}  // namespace parcelvane::hooks
