#include "hooks/settings_section_hooks.h"

#include "hooks/hook_installation.h"
#include "hooks/settings_icon_download.h"
#include "hooks/settings_switches.h"
#include "support/ParcelvaneHelper.h"

#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>
#include <UIKit/CALayer.h>
#include <UIKit/UISwitch.h>
#include <UIKit/UITableViewCell.h>

#include <objc/block.h>
#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

#include <functional>

namespace parcelvane::hooks {

namespace {

// The host's debug screen, found by name at the first tap that finds it.
// Main thread only, like every tap.
Class debugScreenClass = nullptr;

using Handler = objc::Block<void()>;

// Sent as messages: a screen outside a navigation controller pushes to nil.
void push(id settings, id controller) {
    const id navigation = objc::msgSend<id>(settings, objc::sel<"navigationController">());
    objc::msgSend<void>(navigation, objc::sel<"pushViewController:animated:">(), controller, true);
}

void deselect(id settings) {
    objc::msgSend<void>(settings, objc::sel<"deselectActiveCell">());
}

// The handlers hold the settings screen strongly: the host lets its rows go
// when the screen leaves the navigation stack, which ends the cycle.
objc::Strong<Handler> deselectHandler(id settings) {
    return objc::makeBlock<void()>([screen = objc::retained(settings)] { deselect(screen.get()); });
}

objc::Strong<Handler> settingsPageHandler(id settings) {
    return objc::makeBlock<void()>([screen = objc::retained(settings)] {
        deselect(screen.get());
        const objc::Strong<objc_object> page =
            objc::makeInstance("ParcelvaneSetTableViewController");
        push(screen.get(), page.get());
    });
}

// No deselect: the debug screen covers the row anyway.
objc::Strong<Handler> debugScreenHandler(id settings) {
    return objc::makeBlock<void()>([screen = objc::retained(settings)] {
        if (debugScreenClass == nullptr) debugScreenClass = objc_getClass("DebugViewController");
        const objc::Strong<objc_object> debug = objc::makeInstance(debugScreenClass);
        push(screen.get(), debug.get());
    });
}

NSString* translated(NSString* arabic, NSString* english, NSString* french) {
    return ParcelvaneHelper::translate(arabic, english, french);
}

// One row, built in the host's order: the row and its handler, the cell and
// its configuration, then the cell, the title and its alignment, and last
// the row into the section. `title` is asked for at its turn.
void addRow(id section, NSString* reuseIdentifier, const objc::Strong<Handler>& handler,
            const std::function<void(UITableViewCell*)>& configure,
            const std::function<NSString*()>& title) {
    const objc::Strong<objc_object> row = objc::makeInstance("WATableRow");
    objc::msgSend<void>(row.get(), objc::sel<"setHandler:">(), handler.get());
    const objc::Strong<UITableViewCell> cell =
        objc::adopt(objc::alloc<UITableViewCell>()->initWithStyleReuseIdentifier(
            UITableViewCellStyleDefault, reuseIdentifier));
    configure(cell.get());
    objc::msgSend<void>(row.get(), objc::sel<"setCell:">(), static_cast<id>(cell.get()));
    cell->textLabel()->setText(title());
    cell->textLabel()->setTextAlignment(NSTextAlignmentLeft);
    objc::msgSend<void>(section, objc::sel<"addRow:">(), row.get());
}

void configureLinkRow(UITableViewCell* cell) {
    cell->setAccessibilityTraits(UIAccessibilityTraitButton);
    cell->setAccessoryType(UITableViewCellAccessoryDisclosureIndicator);
}

std::function<void(UITableViewCell*)> switchRow(const SettingsSwitch& which, id settings) {
    return [&which, settings](UITableViewCell* cell) {
        cell->setSelectionStyle(UITableViewCellSelectionStyleNone);
        cell->setAccessoryView(makeSettingsSwitch(which, settings));
    };
}

void addDebugRow(id section, id settings) {
    addRow(section, NSSTR("ParcelvaneDebugPageCell"), debugScreenHandler(settings),
           configureLinkRow, [] {
               return translated(NSSTR("Debug"), NSSTR("Debug Settings"), NSSTR("Debug Réglages"));
           });
}

// iOS 7 and later: the settings page, with the library's icon, and the
// host's debug screen.
void addLinkRows(id section, id settings) {
    addRow(
        section, NSSTR("ParcelvaneDebugCell"), settingsPageHandler(settings),
        [](UITableViewCell* cell) {
            CALayer* const layer = cell->imageView()->layer();
            layer->setCornerRadius(5.0);
            layer->setMasksToBounds(true);
            configureLinkRow(cell);
            startSettingsIconDownload(cell);
        },
        [] {
            return translated(NSSTR("Parcelvane إعدادات"), NSSTR("Parcelvane Settings"),
                              NSSTR("Parcelvane Réglages"));
        });
    addDebugRow(section, settings);
}

// Before iOS 7 there is no settings page: the three settings are switches
// right in the section.
void addSwitchRows(id section, id settings) {
    NSString* const advanced =
        translated(NSSTR("تفعيل الاعدادات المتقدمة"), NSSTR("Enable advanced option"),
                   NSSTR("Activer l'option avancée"));
    NSString* const anyDocument =
        translated(NSSTR("تفعيل إرسال اي مستند"), NSSTR("Enable Any Document"),
                   NSSTR("Activer n'importe document"));
    NSString* const systemFiles =
        translated(NSSTR("تفعيل إرسال ملفات النظام"), NSSTR("Enable Send System Files"),
                   NSSTR("Activer l'envoi des fichiers système"));
    addRow(section, NSSTR("ParcelvaneAdvancedCell"), deselectHandler(settings),
           switchRow(advancedSwitch(), settings), [advanced] { return advanced; });
    // B and C share one reuse identifier.
    addRow(section, NSSTR("ParcelvaneAnyDocCell"), deselectHandler(settings),
           switchRow(anyDocumentSwitch(), settings), [anyDocument] { return anyDocument; });
    addRow(section, NSSTR("ParcelvaneAnyDocCell"), deselectHandler(settings),
           switchRow(systemFilesSwitch(), settings), [systemFiles] { return systemFiles; });
    addDebugRow(section, settings);
}

void storeIfTagged(NSUserDefaults* defaults, id sender, const SettingsSwitch& which) {
    if (objc::msgSend<NSInteger>(sender, objc::sel<"tag">()) != which.tag) return;
    const bool on = objc::msgSend<bool>(sender, objc::sel<"isOn">());
    defaults->setObjectForKey(NSNumber::numberWithBool(on), which.key());
}

}  // namespace

id addSectionAtTop(id self, SEL) {
    const objc::Strong<objc_object> section = objc::makeInstance("WATableSection");
    const id sections = objc::msgSend<id>(self, objc::sel<"valueForKey:">(), NSSTR("_sections"));
    // Below the host's first section, never above it, whatever the name says.
    objc::msgSend<void>(sections, objc::sel<"insertObject:atIndex:">(), section.get(),
                        NSUInteger{1});
    return objc::autorelease(objc_retain(section.get()));
}

void setupTableView(id self, SEL sel) {
    callOriginal<&setupTableView>(self, sel);
    const id section = objc::msgSend<id>(self, objc::sel<"addSectionAtTop">());
    objc::msgSend<void>(section, objc::sel<"setHeaderText:">(), NSSTR("Parcelvane"));
    objc::msgSend<void>(section, objc::sel<"setFooterText:">(), NSSTR(""));
    if (ParcelvaneHelper::isLowerThanIOS7()) {
        addSwitchRows(section, self);
    } else {
        addLinkRows(section, self);
    }
}

void didToggleEnableDisable(id, SEL, id sender) {
    NSUserDefaults* const defaults = NSUserDefaults::standardUserDefaults();
    // Three separate tests, not a chain.
    storeIfTagged(defaults, sender, advancedSwitch());
    storeIfTagged(defaults, sender, anyDocumentSwitch());
    storeIfTagged(defaults, sender, systemFilesSwitch());
    defaults->synchronize();
}

}  // namespace parcelvane::hooks
