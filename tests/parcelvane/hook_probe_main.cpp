// One hook-installation scenario in a process of its own: defines stand-ins
// for the host's classes, loads the library (whose load-time initialiser
// installs the hooks) and checks the result. Usage: hook_probe <scenario>.
// Prints one line per check; exits 1 at the first failed one, 2 on bad usage.
#include "hook_probe_toolkit.h"

#include <Foundation/NSRunLoop.h>

#include <dlfcn.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
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

void* loadLibrary(const char* path = PARCELVANE_LIBRARY) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) {
        std::printf("FAIL: cannot load the library: %s\n", dlerror());
        std::exit(2);
    }
    return handle;
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

// The library installed twice, from two paths: each copy keeps its own
// slots, so the second copy's hooks pass on to the first copy's and those to
// the host's; a copy bound to the other's slots would call itself for ever.
void twoCopies() {
    const Class chatBase =
        defineClass<kBase>("ProbeChatBase", NSObject::objcClass(), kChatReplaced);
    defineClass<kOwn>(kChat, chatBase, kChatReplaced);
    const Class table = defineClass<kOwn>(kStatic, NSObject::objcClass(), {"addSectionAtTop"});
    defineTableParts(table);
    defineClass<kOwn>(kSettings, table, {"setupTableView"});

    char pattern[] = "/tmp/hook-probe-XXXXXX";
    check(::mkdtemp(pattern) != nullptr, "made a scratch folder");
    const std::filesystem::path folder = pattern;
    std::vector<void*> copies;
    for (const char* name : {"first.so", "second.so"}) {
        std::filesystem::copy_file(PARCELVANE_LIBRARY, folder / name);
        copies.push_back(loadLibrary((folder / name).c_str()));
    }
    std::filesystem::remove_all(folder);

    for (const std::string& selector : kChatReplaced)
        expectPassedOn(classNamed(kChat), selector, kOwn);
    Dl_info front{};
    check(dladdr(reinterpret_cast<void*>(
                     method_getImplementation(ownMethod(classNamed(kChat), "showActionSheet:"))),
                 &front) != 0 &&
              std::string(front.dli_fname).ends_with("second.so"),
          "the second copy's hook is in front");
    // Each copy adds its section once, after the host's set-up has run.
    calls.clear();
    const auto settings = objc::adopt(class_createInstance(classNamed(kSettings), 0));
    objc::msgSend<void>(settings.get(), objc::sel<"setupTableView">());
    std::vector<std::string> order;
    for (const Call& c : calls) order.push_back(c.owner + " " + sel_getName(c.sel));
    check(order == std::vector<std::string>{"own setupTableView", "own addSectionAtTop",
                                            "own addSectionAtTop"},
          "the host's set-up once, then one section from each copy");

    // Only the published names leave a copy, each copy's own.
    for (const char* name : {"main", "GetBool", "GetInt", "GetLongLong", "GetFloat", "GetValue",
                             "switchview1", "switchview2", "switchview3"}) {
        void* const first = dlsym(copies[0], name);
        void* const second = dlsym(copies[1], name);
        check(first != nullptr && second != nullptr && second != first,
              std::string(name) + " is exported by each copy");
    }
    // parcelvane::hooks::original::setupTableView, ParcelvaneHelper::objcClass()
    for (const char* name :
         {"_ZN10parcelvane5hooks8original14setupTableViewE", "_ZN16ParcelvaneHelper9objcClassEv"}) {
        check(dlsym(copies[0], name) == nullptr, std::string(name) + " stays inside the library");
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<void()>> scenarios = {
        {"inherited", inherited},
        {"own", own},
        {"no_chat_session", noChatSession},
        {"two_copies", twoCopies}};
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
