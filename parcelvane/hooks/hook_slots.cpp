#include "hooks/hook_slots.h"

namespace parcelvane::hooks {

namespace saved {
Class documentMenuSuperclass = nullptr;
Class chatSessionSuperclass = nullptr;
Class staticTableSuperclass = nullptr;
Class settingsSuperclass = nullptr;
}  // namespace saved

namespace original {
IMP initWithDocumentTypesInMode = nullptr;
IMP presentShareDocumentController = nullptr;
IMP documentPickerDidPickDocumentAtURL = nullptr;
IMP showActionSheet = nullptr;
IMP documentMenuDidPickDocumentPicker = nullptr;
IMP chatBarManagerWantsToAttachMedia = nullptr;
IMP setupTableView = nullptr;
}  // namespace original

}  // namespace parcelvane::hooks
