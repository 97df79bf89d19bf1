// A process of its own for one hook-installation scenario: it defines
// stand-ins for the host's classes through the runtime, then loads the
// library (whose load-time initialiser installs the hooks) and checks what
// the installation did. Usage: hook_probe <scenario>. Prints one line per
// check; exits 1 at the first failed check, 2 on bad usage or a failed load.
#include "hook_probe_toolkit.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSRunLoop.h>

#include <dlfcn.h>
#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace probe;

// ---- Loading ---------------------------------------------------------------

void* load(const char* path) {
    void* handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) {
        std::printf("FAIL: cannot load %s: %s\n", path, dlerror());
        std::exit(2);
    }
    return handle;
}

void loadLibrary() {
    load(PARCELVANE_LIBRARY);
}

// The platform's UIDocumentMenuViewController when UIKit is loaded, else a
// stand-in that inherits the initialiser (inheriting) or has its own.
struct DocumentMenu {
    bool platform = false;
    Class base = nullptr;
    std::string typesBefore;  // the platform initialiser's encoding
};

constexpr const char* kDocumentMenu = "UIDocumentMenuViewController";
constexpr const char* kInitTypes = "initWithDocumentTypes:inMode:";
constexpr char kPlatform[] = "platform";

// The platform's initialiser, recorded: the probe puts this in front of it
// before loading, so that it can tell when a call passed on reaches it.
IMP platformInit = nullptr;
id platformResult = nullptr;
id recordedPlatformInit(id self, SEL sel, id types, NSUInteger mode) {
    calls.push_back({kPlatform, self, sel, types, nullptr, mode});
    platformResult = objc::callImp<id>(platformInit, self, sel, types, mode);
    return platformResult;
}

DocumentMenu defineDocumentMenu(bool inheriting) {
    DocumentMenu menu;
    if (const Class platform = objc_getClass(kDocumentMenu)) {
        menu.platform = true;
        const Method init = class_getInstanceMethod(platform, sel_registerName(kInitTypes));
        if (init == nullptr)
            fail("the platform's document menu has no initWithDocumentTypes:inMode:");
        menu.typesBefore = method_getTypeEncoding(init);
        platformInit = method_setImplementation(init, reinterpret_cast<IMP>(&recordedPlatformInit));
        return menu;
    }
    if (inheriting) {
        menu.base =
            defineClass<kBase>("ProbeDocumentMenuBase", NSObject::objcClass(), {kInitTypes});
        defineClass<kOwn>(kDocumentMenu, menu.base);
    } else {
        menu.base =
            defineClass<kBase>("ProbeDocumentMenuBase", NSObject::objcClass(), {kInitTypes});
        defineClass<kOwn>(kDocumentMenu, menu.base, {kInitTypes});
    }
    return menu;
}

// Row 1 as far as the probe can tell it.
void expectDocumentMenuHooked(const DocumentMenu& menu, bool inheriting) {
    if (menu.platform) {
        const std::string what = "the platform's document menu initialiser";
        const Class cls = classNamed(kDocumentMenu);
        const Method own = ownMethod(cls, kInitTypes);
        check(own != nullptr, what + " belongs to the class");
        check(method_getImplementation(own) != reinterpret_cast<IMP>(&recordedPlatformInit),
              what + " is replaced");
        check(menu.typesBefore == method_getTypeEncoding(own), what + " keeps its type encoding");
        // A real document menu, made through the replacement.
        const id fresh = objc::msgSend<id>(reinterpret_cast<id>(cls), objc::sel<"alloc">());
        calls.clear();
        const id made = send(fresh, kInitTypes);
        check(calls.size() == 1 && calls.front().owner == kPlatform,
              what + ": passing on reaches the platform's implementation once");
        check(calls.front().self == fresh && calls.front().first == arguments().first &&
                  calls.front().mode == arguments().mode,
              what + ": with the same receiver and arguments");
        check(made == platformResult && made != nullptr, what + ": answering its result");
        objc_release(made);
        return;
    }
    if (inheriting) {
        expectReplacedInherited(kDocumentMenu, menu.base, kInitTypes);
    } else {
        expectReplacedOwn(kDocumentMenu, kInitTypes);
    }
}

// ---- The host's classes ----------------------------------------------------

constexpr const char* kChat = "WAChatSessionViewController";
constexpr const char* kStatic = "WAStaticTableViewController";
constexpr const char* kSettings = "WASettingsViewController";

const std::vector<std::string> kChatReplaced = {
    "presentShareDocumentController", "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
    "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"};

struct Host {
    DocumentMenu menu;
    Class chatBase = nullptr;
    Class staticBase = nullptr;
};

// Every host method lives in a superclass; the hooked classes inherit them.
// WASettingsViewController is a WAStaticTableViewController, as in the host.
Host defineInheritingHost(bool withChat, bool withActionSheet) {
    Host host;
    host.menu = defineDocumentMenu(true);
    if (withChat) {
        host.chatBase = defineClass<kBase>(
            "ProbeChatBase", NSObject::objcClass(),
            {"presentShareDocumentController", "documentPicker:didPickDocumentAtURL:",
             "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:",
             "_presentForCurrentInterface:", "sendParcelvaneFile"});
        if (withActionSheet) {
            class_addMethod(host.chatBase, sel_registerName("showActionSheet:"),
                            standIn<kBase>("showActionSheet:"),
                            hostMethod("showActionSheet:").types);
        }
        const Class chat = defineClass<kOwn>(kChat, host.chatBase);
        defineClass<kOwn>("ProbeChatSubclass", chat);
    }
    host.staticBase =
        defineClass<kBase>("ProbeStaticTableBase", NSObject::objcClass(),
                           {"addSectionAtTop", "setupTableView", "_didToggleEnableDisable:"});
    const Class table = defineClass<kOwn>(kStatic, host.staticBase);
    giveSections(table);
    defineClass<kOwn>(kSettings, table);
    return host;
}

// ---- Scenarios -------------------------------------------------------------

// The hooked classes only inherit every hooked method.
void inherited() {
    const Host host = defineInheritingHost(true, true);
    check(ownMethodCount(classNamed(kChat)) == 0, "nothing is hooked before loading");
    loadLibrary();

    expectDocumentMenuHooked(host.menu, true);
    for (const auto& selector : kChatReplaced) {
        expectReplacedInherited(kChat, host.chatBase, selector);
    }
    // The fallback passes on to the saved superclass, not to the receiver's:
    // an instance of a subclass reaches the superclass's implementation once.
    expectPassedOn(classNamed("ProbeChatSubclass"), "documentPicker:didPickDocumentAtURL:", kBase,
                   "a subclass instance's documentPicker:didPickDocumentAtURL:");
    expectAdded(kChat, "_presentForCurrentInterface:", "v@:@");
    expectAdded(kChat, "sendParcelvaneFile", "v@:");
    expectAdded(kStatic, "addSectionAtTop", "@@:");
    expectReplacedInherited(kSettings, host.staticBase, "setupTableView");
    expectAdded(kSettings, "_didToggleEnableDisable:", "v@:@");

    // Passing on resolves the superclass's implementation at each call.
    for (const auto& selector : kChatReplaced) expectReachesLater(kChat, host.chatBase, selector);
    expectReachesLater(kSettings, host.staticBase, "setupTableView");
    if (!host.menu.platform) expectReachesLater(kDocumentMenu, host.menu.base, kInitTypes);
}

// The hooked classes implement every hooked method themselves (and so do
// their superclasses, which must not be reached).
void own() {
    const DocumentMenu menu = defineDocumentMenu(false);
    const Class chatBase = defineClass<kBase>(
        "ProbeChatBase", NSObject::objcClass(),
        {"presentShareDocumentController",
         "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
         "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"});
    defineClass<kOwn>(kChat, chatBase,
                      {"presentShareDocumentController",
                       "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
                       "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"});
    const Class table = defineClass<kBase>(kStatic, NSObject::objcClass(), {"setupTableView"});
    giveSections(table);
    defineClass<kOwn>(kSettings, table, {"setupTableView"});
    loadLibrary();

    expectDocumentMenuHooked(menu, false);
    for (const auto& selector : kChatReplaced) expectReplacedOwn(kChat, selector);
    expectReplacedOwn(kSettings, "setupTableView");
    // The previous implementation is kept, so a change of the superclass
    // does not matter.
    method_setImplementation(ownMethod(chatBase, "showActionSheet:"),
                             standIn<kLater>("showActionSheet:"));
    expectPassedOn(classNamed(kChat), "showActionSheet:", kOwn,
                   "-[WAChatSessionViewController showActionSheet:] after the superclass changed");
}

// Without WAChatSessionViewController rows 2 to 8 are not installed anywhere;
// the other classes are hooked as usual.
void noChatSession() {
    const Host host = defineInheritingHost(false, false);
    loadLibrary();

    expectDocumentMenuHooked(host.menu, true);
    expectAdded(kStatic, "addSectionAtTop", "@@:");
    expectReplacedInherited(kSettings, host.staticBase, "setupTableView");
    expectAdded(kSettings, "_didToggleEnableDisable:", "v@:@");

    // A chat screen class that appears later is untouched.
    const Class chatBase = defineClass<kBase>("ProbeChatBase", NSObject::objcClass(),
                                              {"presentShareDocumentController"});
    const Class chat = defineClass<kOwn>(kChat, chatBase);
    check(ownMethodCount(chat) == 0, "a later WAChatSessionViewController has no methods added");
    check(!class_respondsToSelector(chat, sel_registerName("sendParcelvaneFile")),
          "no sendParcelvaneFile anywhere in its hierarchy");
    check(!class_respondsToSelector(chat, sel_registerName("_presentForCurrentInterface:")),
          "no _presentForCurrentInterface: anywhere in its hierarchy");
    check(!class_respondsToSelector(NSObject::objcClass(), sel_registerName("showActionSheet:")),
          "nothing was added to the root class");
    expectPassedOn(chat, "presentShareDocumentController", kBase,
                   "a later WAChatSessionViewController's presentShareDocumentController");
}

// The classes already implement the methods that the library adds.
void addedExists() {
    const DocumentMenu menu = defineDocumentMenu(true);
    const Class chatBase = defineClass<kBase>(
        "ProbeChatBase", NSObject::objcClass(),
        {"presentShareDocumentController",
         "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
         "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"});
    defineClass<kOwn>(kChat, chatBase, {"_presentForCurrentInterface:", "sendParcelvaneFile"});
    const Class tableBase =
        defineClass<kBase>("ProbeStaticTableBase", NSObject::objcClass(), {"setupTableView"});
    const Class table = defineClass<kOwn>(kStatic, tableBase, {"addSectionAtTop"});
    giveSections(table);
    defineClass<kOwn>(kSettings, table, {"_didToggleEnableDisable:"});
    loadLibrary();

    expectKeptOwn(kChat, "_presentForCurrentInterface:");
    expectKeptOwn(kChat, "sendParcelvaneFile");
    expectKeptOwn(kStatic, "addSectionAtTop");
    expectKeptOwn(kSettings, "_didToggleEnableDisable:");
    // The rows after a refused addition are still installed.
    expectReplacedInherited(kChat, chatBase, "documentMenu:didPickDocumentPicker:");
    expectReplacedInherited(kChat, chatBase, "chatBarManagerWantsToAttachMedia:");
    expectReplacedInherited(kSettings, tableBase, "setupTableView");
    expectDocumentMenuHooked(menu, true);
}

// showActionSheet: exists nowhere in the chat screen's hierarchy: only that
// replacement is skipped.
void missingMethod() {
    const Host host = defineInheritingHost(true, false);
    loadLibrary();

    const Class chat = classNamed(kChat);
    check(class_getInstanceMethod(chat, sel_registerName("showActionSheet:")) == nullptr,
          "no showActionSheet: was put into WAChatSessionViewController");
    for (const auto& selector : kChatReplaced) {
        if (selector != "showActionSheet:") {
            expectReplacedInherited(kChat, host.chatBase, selector);
        }
    }
    expectAdded(kChat, "_presentForCurrentInterface:", "v@:@");
    expectAdded(kChat, "sendParcelvaneFile", "v@:");
    expectDocumentMenuHooked(host.menu, true);
    expectReplacedInherited(kSettings, host.staticBase, "setupTableView");
}

// The initialiser asks the tools library to prepare its file browser, once,
// before it installs any hook.
struct ToolsCall {
    int count = 0;
    bool hooksInstalledAlready = false;
    IMP original = nullptr;
};
ToolsCall toolsCall;

void countedLoadFileBrowser(id cls, SEL sel) {
    ++toolsCall.count;
    toolsCall.hooksInstalledAlready = ownMethodCount(classNamed(kChat)) != 0;
    objc::callImp<void>(toolsCall.original, cls, sel);
}

void preparesFileBrowser() {
    defineInheritingHost(true, true);
    load(TOOLS_LIBRARY);
    const Class tools = classNamed("TolbrennDevTools");
    const SEL ready = sel_registerName("fileBrowserLibrariesLoaded");
    check(!objc::msgSend<bool>(reinterpret_cast<id>(tools), ready),
          "the file browser is not ready before the library loads");
    const Method prepare =
        class_getClassMethod(tools, sel_registerName("loadFileBrowserLibrariesIfNeeded"));
    check(prepare != nullptr, "TolbrennDevTools answers loadFileBrowserLibrariesIfNeeded");
    toolsCall.original =
        method_setImplementation(prepare, reinterpret_cast<IMP>(&countedLoadFileBrowser));

    loadLibrary();

    check(toolsCall.count == 1, "loadFileBrowserLibrariesIfNeeded was called once");
    check(!toolsCall.hooksInstalledAlready, "it was called before any hook was installed");
    check(objc::msgSend<bool>(reinterpret_cast<id>(tools), ready),
          "the file browser is ready after the library loaded");
    check(ownMethodCount(classNamed(kChat)) != 0, "the hooks were installed afterwards");
}

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<void()>> scenarios = {
        {"inherited", inherited},           {"own", own},
        {"no_chat_session", noChatSession}, {"added_exists", addedExists},
        {"missing_method", missingMethod},  {"prepares_file_browser", preparesFileBrowser},
    };
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
    defineTableParts();
    it->second();
    // Background work the hooks started ends before the process does.
    foundation::runMainLoopUntilIdle(true);
    std::printf("passed: %s\n", argv[1]);
    return 0;
}
