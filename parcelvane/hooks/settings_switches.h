// The inline switches of the library's Settings section (systems before
// iOS 7), exported under their historical names for whoever loads the
// library. Each holds a strong reference (or null) to the switch of the
// section built last; a rebuild replaces it and releases the previous one,
// which lives on only as long as its cell keeps it. Written on the main
// thread only.
#pragma once

#include <objc/types.h>

class NSString;
class UISwitch;

extern "C" {

PV_EXPORT extern UISwitch* switchview1;  // tag 34, doc_options_bool
PV_EXPORT extern UISwitch* switchview2;  // tag 38, send_documents_enabled
PV_EXPORT extern UISwitch* switchview3;  // tag 42, send_filesystem_enabled

}  // extern "C"

namespace parcelvane::hooks {

// One switch of the section: its global, its tag and the key it writes.
struct SettingsSwitch {
    UISwitch** global;
    NSInteger tag;
    NSString* (*key)();
};

const SettingsSwitch& advancedSwitch();     // switchview1
const SettingsSwitch& anyDocumentSwitch();  // switchview2
const SettingsSwitch& systemFilesSwitch();  // switchview3

// Makes a new switch with +[UISwitch new], stores it in the global (the
// previous one is released), shows the key's stored value (off when the key
// is missing), tags it, and makes `target` hear its value changes through
// _didToggleEnableDisable:. Answers the switch.
UISwitch* makeSettingsSwitch(const SettingsSwitch& which, id target);

}  // namespace parcelvane::hooks
