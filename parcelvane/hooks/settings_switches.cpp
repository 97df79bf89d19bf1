#include "hooks/settings_switches.h"

#include "hooks/settings_keys.h"

#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>
#include <UIKit/UISwitch.h>

#include <objc/message.h>
#include <objc/runtime.h>
#include <objc/strong.h>

// Global mutable state by design: the host's old screens reach the switches
// by these names. Never released at exit, like any global strong reference.
UISwitch* switchview1 = nullptr;
UISwitch* switchview2 = nullptr;
UISwitch* switchview3 = nullptr;

namespace parcelvane::hooks {

const SettingsSwitch& advancedSwitch() {
    static const SettingsSwitch entry{&switchview1, 34, &keys::docOptions};
    return entry;
}

const SettingsSwitch& anyDocumentSwitch() {
    static const SettingsSwitch entry{&switchview2, 38, &keys::sendDocumentsEnabled};
    return entry;
}

const SettingsSwitch& systemFilesSwitch() {
    static const SettingsSwitch entry{&switchview3, 42, &keys::sendFilesystemEnabled};
    return entry;
}

UISwitch* makeSettingsSwitch(const SettingsSwitch& which, id target) {
    objc::Strong<UISwitch> fresh =
        objc::adopt(objc::msgSend<UISwitch*>(UISwitch::objcClass(), objc::sel<"new">()));
    // As a strong store does: the new one is kept before the old one goes.
    UISwitch* const previous = *which.global;
    *which.global = fresh.leak();
    objc_release(previous);

    UISwitch* const control = *which.global;
    // A missing key sends boolValue to nil, which answers NO.
    const id stored = NSUserDefaults::standardUserDefaults()->objectForKey(which.key());
    if (objc::msgSend<bool>(stored, objc::sel<"boolValue">())) control->setOnAnimated(true, false);
    control->setTag(which.tag);
    control->addTargetActionForControlEvents(target, objc::sel<"_didToggleEnableDisable:">(),
                                             UIControlEventValueChanged);
    return control;
}

}  // namespace parcelvane::hooks
