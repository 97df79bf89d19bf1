// Where the hooks keep what they stand in front of.
//
// Global mutable state by design: each slot is written only while the hooks
// are installed at load, before any hooked method can run, and is only read
// afterwards. A slot stays empty when its hook was not installed.
#pragma once

#include <objc/types.h>

namespace parcelvane::hooks {

// Each hooked class's superclass as it was at installation.
namespace saved {
extern Class documentMenuSuperclass;  // UIDocumentMenuViewController's
extern Class chatSessionSuperclass;   // WAChatSessionViewController's
extern Class staticTableSuperclass;   // WAStaticTableViewController's (kept, unused)
extern Class settingsSuperclass;      // WASettingsViewController's
}  // namespace saved

// The implementation each replacement passes its calls on to.
namespace original {
extern IMP initWithDocumentTypesInMode;
extern IMP presentShareDocumentController;
extern IMP documentPickerDidPickDocumentAtURL;
extern IMP showActionSheet;
extern IMP documentMenuDidPickDocumentPicker;
extern IMP chatBarManagerWantsToAttachMedia;
extern IMP setupTableView;
}  // namespace original

}  // namespace parcelvane::hooks
