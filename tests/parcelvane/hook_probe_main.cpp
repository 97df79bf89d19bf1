// One hook-installation scenario in a process of its own: defines stand-ins
// for the host's classes, loads the library (whose load-time initialiser
// installs the hooks) and checks the result. Usage: hook_probe <scenario>.
// Prints one line per check; exits 1 at the first failed one, 2 on bad usage.
#include "hook_probe_toolkit.h"

#include <Foundation/NSRunLoop.h>

#include <dlfcn.h>
#include <stdlib.h>

#include <cstdio>
#include <functional>
#include <map>

namespace {

using namespace probe;

constexpr const char* kChat = "WAChatSessionViewController";
constexpr const char* kStatic = "WAStaticTableViewController";
constexpr const char* kSettings = "WASettingsViewController";

const std::vector<std::string> kChatReplaced = {
    "presentShareDocumentController", "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
    "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"};
// With the methods that the library adds.
const std::vector<std::string> kChatAll = [] {
    std::vector<std::string> all = kChatReplaced;
    all.insert(all.end(), {"_presentForCurrentInterface:", "sendParcelvaneFile"});
    return all;
}();

void loadLibrary() {
    if (dlopen(PARCELVANE_LIBRARY, RTLD_NOW | RTLD_GLOBAL) == nullptr) {
        std::printf("FAIL: cannot load the library: %s\n", dlerror());
        std::exit(2);
    }
}

// The Settings screen inherits every hooked method, as a
// WAStaticTableViewController like the host's.
void defineInheritingTable() {
    const Class base =
        defineClass<kBase>("ProbeStaticTableBase", NSObject::objcClass(),
                           {"addSectionAtTop", "setupTableView", "_didToggleEnableDisable:"});
    const Class table = defineClass<kOwn>(kStatic, base);
    defineTableParts(table);
    defineClass<kOwn>(kSettings, table);
}

void expectInheritingTableHooked() {
    expectAdded(kStatic, "addSectionAtTop", "@@:");
    expectReplacedInherited(kSettings, "setupTableView");
    expectAdded(kSettings, "_didToggleEnableDisable:", "v@:@");
}

// The hooked classes only inherit the methods (which their superclasses have).
void inherited() {
    const Class chatBase = defineClass<kBase>("ProbeChatBase", NSObject::objcClass(), kChatAll);
    defineClass<kOwn>("ProbeChatSubclass", defineClass<kOwn>(kChat, chatBase));
    defineInheritingTable();
    loadLibrary();

    for (const std::string& selector : kChatReplaced) expectReplacedInherited(kChat, selector);
    // The fallback passes on to the saved superclass, not the receiver's: a
    // subclass instance would otherwise come back to the replacement.
    expectPassedOn(classNamed("ProbeChatSubclass"), "documentPicker:didPickDocumentAtURL:", kBase);
    expectAdded(kChat, "_presentForCurrentInterface:", "v@:@");
    expectAdded(kChat, "sendParcelvaneFile", "v@:");
    expectInheritingTableHooked();
}

// The hooked classes implement every method themselves, also the ones the
// library would add: those stay, and the rows after them are still installed.
void own() {
    const Class chatBase =
        defineClass<kBase>("ProbeChatBase", NSObject::objcClass(), kChatReplaced);
    defineClass<kOwn>(kChat, chatBase, kChatAll);
    const Class table =
        defineClass<kOwn>(kStatic, NSObject::objcClass(), {"setupTableView", "addSectionAtTop"});
    defineTableParts(table);
    defineClass<kOwn>(kSettings, table, {"setupTableView", "_didToggleEnableDisable:"});
    loadLibrary();

    for (const std::string& selector : kChatReplaced) expectReplacedOwn(kChat, selector);
    expectReplacedOwn(kSettings, "setupTableView");
    expectKeptOwn(kChat, "_presentForCurrentInterface:");
    expectKeptOwn(kChat, "sendParcelvaneFile");
    expectKeptOwn(kStatic, "addSectionAtTop");
    expectKeptOwn(kSettings, "_didToggleEnableDisable:");
}

// No WAChatSessionViewController: its rows are skipped, the others installed.
void noChatSession() {
    defineInheritingTable();
    loadLibrary();
    expectInheritingTableHooked();
    const Class chat = defineClass<kOwn>(kChat, NSObject::objcClass());
    check(!class_respondsToSelector(chat, sel_registerName("sendParcelvaneFile")) &&
              !class_respondsToSelector(chat, sel_registerName("_presentForCurrentInterface:")) &&
              !class_respondsToSelector(chat, sel_registerName("showActionSheet:")),
          "nothing of the chat screen's rows went anywhere");
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<void()>> scenarios = {
        {"inherited", inherited}, {"own", own}, {"no_chat_session", noChatSession}};
    const auto it = argc == 2 ? scenarios.find(argv[1]) : scenarios.end();
    if (it == scenarios.end()) {
        std::fprintf(stderr, "usage: hook_probe <scenario>\n");
        return 2;
    }
    // The Settings section's icon download must fail at once, off the network.
    ::setenv("http_proxy", "http://127.0.0.1:9", 1);
    ::unsetenv("no_proxy");
    ::unsetenv("NO_PROXY");
    const objc::AutoreleasePool pool;
    it->second();
    // Background work the hooks started ends before the process does.
    foundation::runMainLoopUntilIdle(true);
    std::printf("passed: %s\n", argv[1]);
    return 0;
}
