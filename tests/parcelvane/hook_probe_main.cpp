// Loads two copies of the library beside stand-in host classes and checks the hooks, one line
// each; exits 1 at the first failed check, 2 when the library cannot be loaded.
#include "hook_probe_toolkit.h"
#include "scratch_folder.h"

#include <Foundation/NSRunLoop.h>

#include <dlfcn.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>

namespace {

using namespace testsupport;

constexpr const char* kChat = "WAChatSessionViewController";
constexpr const char* kStatic = "WAStaticTableViewController";
constexpr const char* kSettings = "WASettingsViewController";

const std::vector<std::string> kChatReplaced = {
    "presentShareDocumentController", "documentPicker:didPickDocumentAtURL:", "showActionSheet:",
    "documentMenu:didPickDocumentPicker:", "chatBarManagerWantsToAttachMedia:"};

void* loadLibrary(const char* path = PARCELVANE_LIBRARY) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) {
        std::printf("FAIL: cannot load the library: %s\n", dlerror());
        std::exit(2);
    }
    return handle;
}

// Two copies each keep their own slots: the second's hooks pass on to the first's, then the host's.
void twoCopies() {
    const Class chatBase =
        defineClass<kBase>("ProbeChatBase", NSObject::objcClass(), kChatReplaced);
    defineClass<kOwn>(kChat, chatBase, kChatReplaced);
    const Class table = defineClass<kOwn>(kStatic, NSObject::objcClass(), {"addSectionAtTop"});
    defineTableParts(table);
    defineClass<kOwn>(kSettings, table, {"setupTableView"});

    std::vector<void*> copies;
    {
        const testsupport::ScratchFolder folder("hook-probe");
        for (const char* name : {"first.so", "second.so"}) {
            std::filesystem::copy_file(PARCELVANE_LIBRARY, folder / name);
            copies.push_back(loadLibrary((folder / name).c_str()));
        }
    }

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
    // parcelvane::hooks::Original<&setupTableView>::imp, ParcelvaneHelper::objcClass()
    for (const char* name : {"_ZN10parcelvane5hooks8OriginalIXadL_ZNS0_14setupTableViewEP11objc_"
                             "objectPK13objc_selectorEEE3impE",
                             "_ZN16ParcelvaneHelper9objcClassEv"}) {
        check(dlsym(copies[0], name) == nullptr, std::string(name) + " stays inside the library");
    }
}

}  // namespace

int main() {
    // The Settings section's icon download must fail at once, off the network.
    ::setenv("http_proxy", "http://127.0.0.1:9", 1);
    ::unsetenv("no_proxy");
    ::unsetenv("NO_PROXY");
    const objc::AutoreleasePool pool;
    twoCopies();
    // Background work the hooks started ends before the process does.
    foundation::runMainLoopUntilIdle(true);
    std::printf("passed\n");
    return 0;
}
