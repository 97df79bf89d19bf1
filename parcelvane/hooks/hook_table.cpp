#include "hooks/hook_table.h"

#include "hooks/attach_menu_hooks.h"
#include "hooks/document_picker_hooks.h"
#include "hooks/hook_slots.h"
#include "hooks/settings_section_hooks.h"

namespace parcelvane::hooks {

std::span<const HookRow> hookTable() {
    static const HookRow rows[] = {
        // 1
        replacedMethod<&initWithDocumentTypesInMode, &saved::documentMenuSuperclass,
                       &original::initWithDocumentTypesInMode>("UIDocumentMenuViewController",
                                                               "initWithDocumentTypes:inMode:"),
        // 2
        replacedMethod<&presentShareDocumentController, &saved::chatSessionSuperclass,
                       &original::presentShareDocumentController>("WAChatSessionViewController",
                                                                  "presentShareDocumentController"),
        // 3
        replacedMethod<&documentPickerDidPickDocumentAtURL, &saved::chatSessionSuperclass,
                       &original::documentPickerDidPickDocumentAtURL>(
            "WAChatSessionViewController", "documentPicker:didPickDocumentAtURL:"),
        // 4
        replacedMethod<&showActionSheet, &saved::chatSessionSuperclass, &original::showActionSheet>(
            "WAChatSessionViewController", "showActionSheet:"),
        // 5
        addedMethod<&presentForCurrentInterface, &saved::chatSessionSuperclass>(
            "WAChatSessionViewController", "_presentForCurrentInterface:", "v@:@"),
        // 6
        replacedMethod<&documentMenuDidPickDocumentPicker, &saved::chatSessionSuperclass,
                       &original::documentMenuDidPickDocumentPicker>(
            "WAChatSessionViewController", "documentMenu:didPickDocumentPicker:"),
        // 7
        replacedMethod<&chatBarManagerWantsToAttachMedia, &saved::chatSessionSuperclass,
                       &original::chatBarManagerWantsToAttachMedia>(
            "WAChatSessionViewController", "chatBarManagerWantsToAttachMedia:"),
        // 8
        addedMethod<&sendParcelvaneFile, &saved::chatSessionSuperclass>(
            "WAChatSessionViewController", "sendParcelvaneFile", "v@:"),
        // 9
        addedMethod<&addSectionAtTop, &saved::staticTableSuperclass>("WAStaticTableViewController",
                                                                     "addSectionAtTop", "@@:"),
        // 10
        replacedMethod<&setupTableView, &saved::settingsSuperclass, &original::setupTableView>(
            "WASettingsViewController", "setupTableView"),
        // 11
        addedMethod<&didToggleEnableDisable, &saved::settingsSuperclass>(
            "WASettingsViewController", "_didToggleEnableDisable:", "v@:@"),
    };
    return rows;
}

}  // namespace parcelvane::hooks
