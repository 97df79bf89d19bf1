// A file gone while the browser is still going away is not sent; no script can act in that gap,
// so this drives the host's chat screen in-process with the library loaded.
#include "messenger_process.h"

#include <Host/WAChatSessionViewController.h>
#include <Host/chat_store.h>

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <Foundation/NSRunLoop.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>

#include <UIKit/UIKit.h>

#include <dlfcn.h>

#include <algorithm>

namespace {

using namespace testsupport;

std::size_t documentsIn(const host::ChatStore& store, const std::string& chat) {
    const auto messages = store.messages(chat);
    return static_cast<std::size_t>(std::count_if(
        messages.begin(), messages.end(),
        [](const host::Message& m) { return m.kind == host::Message::Kind::Document; }));
}

class BrowserDismissal : public ::testing::Test {
  protected:
    BrowserDismissal() {
        for (const char* folder : {"Documents", "Library/Preferences", "tmp"}) {
            fs::create_directories(base / "Container" / folder);
        }
        fs::create_directories(files());
        foundation::ProcessEnvironment environment;
        environment.homeDirectory = (base / "Container").string();
        environment.mainBundlePath = HOST_BUNDLE_DIR;
        environment.preferredLanguages = {"en"};
        foundation::configureProcess(environment);
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
    }
    // The defaults are written before the container goes, not into a folder made again.
    ~BrowserDismissal() override {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
    }

    fs::path files() const { return base / "files"; }

    // Attach button, the library's entry, then the browser at the files.
    ParcelvaneFileBrowserViewController* openBrowser(WAChatSessionViewController* chat) {
        chat->chatBarManagerWantsToAttachMedia(nullptr);
        WAActionSheet* sheet = chat->visibleActionSheet();
        if (sheet == nullptr) return nullptr;
        const auto titles = sheet->entryTitles();
        const auto entry = std::find(titles.begin(), titles.end(), "Share Document (Parcelvane)");
        if (entry == titles.end()) return nullptr;
        sheet->choose(static_cast<std::size_t>(entry - titles.begin()));
        foundation::runMainLoopUntilIdle();
        auto* nav = objc::cast<UINavigationController>(chat->presentedViewController());
        if (nav == nullptr) return nullptr;
        auto* browser = objc::cast<ParcelvaneFileBrowserViewController>(nav->topViewController());
        if (browser == nullptr || !browser->openPath(NSString::create(files().string()).get())) {
            return nullptr;
        }
        return objc::cast<ParcelvaneFileBrowserViewController>(nav->topViewController());
    }

    static NSUInteger indexOf(ParcelvaneFileBrowserViewController* browser,
                              const std::string& name) {
        const auto& entries = browser->entries();
        const auto it = std::find_if(entries.begin(), entries.end(),
                                     [&](const auto& e) { return e.name == name; });
        return static_cast<NSUInteger>(it - entries.begin());
    }

    const ScratchFolder base{"messenger-test"};
};

TEST_F(BrowserDismissal, AFileGoneBeforeTheBrowserHasGoneIsNotSentOneThatStaysIsSentOnce) {
    ASSERT_NE(dlopen(PARCELVANE_LIBRARY, RTLD_NOW | RTLD_GLOBAL), nullptr) << dlerror();
    objc::AutoreleasePool pool;
    NSUserDefaults::standardUserDefaults()->setBoolForKey(true, NSSTR("send_filesystem_enabled"));
    const auto store = std::make_shared<host::MemoryChatStore>();
    const auto chat = WAChatSessionViewController::create("Alice", store);
    const auto window = UIWindow::create();
    window->setRootViewController(chat.get());
    window->makeKeyAndVisible();
    foundation::runMainLoopUntilIdle();

    writeFile(files() / "doomed.txt", "gone soon");
    writeFile(files() / "kept.txt", "stays");

    ParcelvaneFileBrowserViewController* browser = openBrowser(chat.get());
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(browser->chooseEntryAtIndex(indexOf(browser, "doomed.txt")));
    // The browser is on its way out; the sending waits for the end of that.
    ASSERT_EQ(documentsIn(*store, "Alice"), 0u) << "sent before the browser had gone";
    fs::remove(files() / "doomed.txt");
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(chat->presentedViewController(), nullptr);
    EXPECT_EQ(documentsIn(*store, "Alice"), 0u);

    // The same path with a file that stays: it is sent, once.
    browser = openBrowser(chat.get());
    ASSERT_NE(browser, nullptr);
    ASSERT_TRUE(browser->chooseEntryAtIndex(indexOf(browser, "kept.txt")));
    foundation::runMainLoopUntilIdle();
    EXPECT_EQ(documentsIn(*store, "Alice"), 1u);
    EXPECT_TRUE(fs::exists(files() / "kept.txt")) << "the user's file is copied, not taken";

    window->setRootViewController(nullptr);
    foundation::runMainLoopUntilIdle();
}

}  // namespace
