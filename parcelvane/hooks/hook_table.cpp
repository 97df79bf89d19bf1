#include "hooks/hook_table.h"

#include "hooks/attach_menu_hooks.h"
#include "hooks/document_picker_hooks.h"
#include "hooks/settings_section_hooks.h"

#include <TolbrennDevTools/TolbrennDevTools.h>

namespace parcelvane::hooks {

std::span<const HookRow> hookTable() {
    // A class lists the methods it is given in the order they arrive, so this
    // order is what anyone listing the host's methods sees: keep it.
    static const HookRow rows[] = {
        replace<&initWithDocumentTypesInMode>("UIDocumentMenuViewController",
                                              "initWithDocumentTypes:inMode:"),
        replace<&presentShareDocumentController>("WAChatSessionViewController",
                                                 "presentShareDocumentController"),
        replace<&documentPickerDidPickDocumentAtURL>("WAChatSessionViewController",
                                                     "documentPicker:didPickDocumentAtURL:"),
        replace<&showActionSheet>("WAChatSessionViewController", "showActionSheet:"),
        add<&presentForCurrentInterface>("WAChatSessionViewController",
                                         "_presentForCurrentInterface:"),
        replace<&documentMenuDidPickDocumentPicker>("WAChatSessionViewController",
                                                    "documentMenu:didPickDocumentPicker:"),
        replace<&chatBarManagerWantsToAttachMedia>("WAChatSessionViewController",
                                                   "chatBarManagerWantsToAttachMedia:"),
        add<&sendParcelvaneFile>("WAChatSessionViewController", "sendParcelvaneFile"),
        add<&addSectionAtTop>("WAStaticTableViewController", "addSectionAtTop"),
        replace<&setupTableView>("WASettingsViewController", "setupTableView"),
        add<&didToggleEnableDisable>("WASettingsViewController", "_didToggleEnableDisable:"),
    };
    return rows;
}

std::vector<HookResult> installParcelvane() {
    TolbrennDevTools::loadFileBrowserLibrariesIfNeeded();
    return installHooks(hookTable());
}

}  // namespace parcelvane::hooks
