// The document menu hooks, called as the host calls them, against a recording
// chat screen and the platform's own document menu (whose initialiser this
// test program's copy of the library replaced at load).
#include <gtest/gtest.h>

#include "chat_screen_fakes.h"
#include "hooks/document_picker_hooks.h"
#include "scratch_defaults.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSRunLoop.h>
#include <UIKit/DeviceProfile.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/UIPopoverController.h>
#include <UIKit/UIWindow.h>

#include <objc/message.h>
#include <objc/runtime.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using chat_fakes::eventNames;
using chat_fakes::events;
using chat_fakes::SlotRecorder;
namespace hooks = parcelvane::hooks;
namespace original = parcelvane::hooks::original;

std::vector<std::string> typesOf(UIDocumentMenuViewController* menu) {
    return menu->typeList();
}

class DocumentPickerHooksTest : public ::testing::Test {
  protected:
    DocumentPickerHooksTest() { events().clear(); }
    ~DocumentPickerHooksTest() override {
        for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
            popover->dismissPopoverAnimated(false);
        }
        foundation::runMainLoopUntilIdle();
        events().clear();
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
    }

    void sendDocuments(bool on) {
        scratch.defaults()->setBoolForKey(on, NSSTR("send_documents_enabled"));
    }
    static void device(uikit::DeviceProfile profile, const std::string& systemVersion = "9.3") {
        profile.systemVersion = systemVersion;
        uikit::configureDevice(std::move(profile));
    }
    // The scratch folder, which is also the main bundle.
    static std::string home() { return NSBundle::mainBundle()->bundlePath()->utf8(); }
    // A file in the scratch folder, with its path.
    std::string file(const std::string& name) {
        const std::string path = home() + "/" + name;
        std::ofstream(path) << "contents of " << name;
        return path;
    }
    // The attachments the chat screen was sent, in order.
    std::vector<FakeDocumentAttachment*> sentAttachments() const {
        std::vector<FakeDocumentAttachment*> sent;
        for (const auto& event : events()) {
            if (event.what == "sendDocumentAttachment:") {
                sent.push_back(objc::cast<FakeDocumentAttachment>(event.first.get()));
            }
        }
        return sent;
    }
    void pick(NSURL* url) {
        const auto picker = UIViewController::create();
        hooks::documentPickerDidPickDocumentAtURL(
            chat.get(), objc::sel<"documentPicker:didPickDocumentAtURL:">(), picker.get(), url);
    }

    objc::AutoreleasePool pool;
    parcelvane_testing::ScratchDefaults scratch;
    objc::Strong<FakeChatScreen> chat = objc::make<FakeChatScreen>();
};

// ---- Widening ------------------------------------------------------------------

TEST_F(DocumentPickerHooksTest, EveryMenuKeepsTheCallersTypesAndModeWhileTheSettingIsOff) {
    const auto types = NSArray::create({NSSTR("com.adobe.pdf"), NSSTR("public.text")});
    const auto absent = UIDocumentMenuViewController::create(types.get(), 2);
    EXPECT_EQ(typesOf(absent.get()), (std::vector<std::string>{"com.adobe.pdf", "public.text"}));
    EXPECT_EQ(absent->mode(), 2u);

    sendDocuments(false);
    const auto off = UIDocumentMenuViewController::create(types.get(), 3);
    EXPECT_EQ(typesOf(off.get()), (std::vector<std::string>{"com.adobe.pdf", "public.text"}));
    EXPECT_EQ(off->mode(), 3u);
}

TEST_F(DocumentPickerHooksTest, EveryMenuAcceptsAllDataInImportModeWhileTheSettingIsOn) {
    sendDocuments(true);
    const auto types = NSArray::create({NSSTR("com.adobe.pdf")});
    const auto exporting = UIDocumentMenuViewController::create(types.get(), 2);
    EXPECT_EQ(typesOf(exporting.get()), std::vector<std::string>{"public.data"});
    EXPECT_EQ(exporting->mode(), UIDocumentPickerModeImport);
    // Read at each call: switching off again restores the caller's choice.
    sendDocuments(false);
    const auto later = UIDocumentMenuViewController::create(types.get(), 2);
    EXPECT_EQ(typesOf(later.get()), std::vector<std::string>{"com.adobe.pdf"});
}

// ---- Share action -----------------------------------------------------------------

TEST_F(DocumentPickerHooksTest, TheShareActionIsTheHostsOwnWhileTheSettingIsOff) {
    const SlotRecorder host(original::presentShareDocumentController,
                            SlotRecorder::Shape::NoArguments);
    hooks::presentShareDocumentController(chat.get(),
                                          objc::sel<"presentShareDocumentController">());
    ASSERT_EQ(eventNames(), std::vector<std::string>{"presentShareDocumentController"});
    EXPECT_EQ(events()[0].receiver, chat.get());
}

TEST_F(DocumentPickerHooksTest, TheShareActionPresentsAWidenedMenuDelegatedToTheChat) {
    const SlotRecorder host(original::presentShareDocumentController,
                            SlotRecorder::Shape::NoArguments);
    sendDocuments(true);
    hooks::presentShareDocumentController(chat.get(),
                                          objc::sel<"presentShareDocumentController">());
    ASSERT_EQ(eventNames(), std::vector<std::string>{"_presentForCurrentInterface:"});
    auto* const menu = objc::cast<UIDocumentMenuViewController>(events()[0].first.get());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(typesOf(menu), std::vector<std::string>{"public.data"});
    EXPECT_EQ(menu->mode(), UIDocumentPickerModeImport);
    EXPECT_EQ(menu->delegate(), chat.get());
}

TEST_F(DocumentPickerHooksTest, BelowIOS8TheShareActionOpensTheFileBrowserInstead) {
    const SlotRecorder host(original::presentShareDocumentController,
                            SlotRecorder::Shape::NoArguments);
    device(uikit::DeviceProfile::iPhone4s(), "7.1.2");
    sendDocuments(true);
    hooks::presentShareDocumentController(chat.get(),
                                          objc::sel<"presentShareDocumentController">());
    EXPECT_EQ(eventNames(), std::vector<std::string>{"sendParcelvaneFile"});
}

// ---- Picking a provider ---------------------------------------------------------

TEST_F(DocumentPickerHooksTest, APickedProvidersPickerIsAFormSheetWhateverTheSetting) {
    const SlotRecorder host(original::documentMenuDidPickDocumentPicker,
                            SlotRecorder::Shape::TwoObjects);
    const auto menu = UIViewController::create();
    for (const bool on : {false, true}) {
        events().clear();
        sendDocuments(on);
        const auto picker = UIViewController::create();
        hooks::documentMenuDidPickDocumentPicker(chat.get(),
                                                 objc::sel<"documentMenu:didPickDocumentPicker:">(),
                                                 menu.get(), picker.get());
        EXPECT_EQ(picker->modalPresentationStyle(), UIModalPresentationFormSheet);
        ASSERT_EQ(eventNames(), std::vector<std::string>{"documentMenu:didPickDocumentPicker:"});
        EXPECT_EQ(events()[0].receiver, chat.get());
        EXPECT_EQ(events()[0].first.get(), menu.get());
        EXPECT_EQ(events()[0].second.get(), picker.get());
    }
}

// ---- Picking a document -------------------------------------------------------------

TEST_F(DocumentPickerHooksTest, APickGoesToTheHostWhileTheSettingIsOff) {
    const SlotRecorder host(original::documentPickerDidPickDocumentAtURL,
                            SlotRecorder::Shape::TwoObjects);
    NSURL* const url = NSURL::fileURLWithPath(NSString::create(file("report.pdf")).get());
    pick(url);
    foundation::runMainLoopUntilIdle();
    ASSERT_EQ(eventNames(), std::vector<std::string>{"documentPicker:didPickDocumentAtURL:"});
    EXPECT_EQ(events()[0].second.get(), url);
}

TEST_F(DocumentPickerHooksTest, AnExistingPickedFileIsSentOnceOnTheNextTurnOfTheMainQueue) {
    const SlotRecorder host(original::documentPickerDidPickDocumentAtURL,
                            SlotRecorder::Shape::TwoObjects);
    sendDocuments(true);
    const std::string path = file("report.pdf");
    pick(NSURL::fileURLWithPath(NSString::create(path).get()));
    EXPECT_TRUE(events().empty()) << "sent before the main queue ran";

    foundation::runMainLoopUntilIdle();
    const auto sent = sentAttachments();
    ASSERT_EQ(sent.size(), 1u);
    ASSERT_NE(sent[0], nullptr);
    EXPECT_EQ(sent[0]->url->path()->utf8(), path);
    EXPECT_TRUE(sent[0]->transfersOwnership);
    EXPECT_EQ(eventNames(), std::vector<std::string>{"sendDocumentAttachment:"});
    // The chat screen alone holds the attachment: the library let go of its own.
    EXPECT_EQ(objc_retainCount(sent[0]), 1u);
}

TEST_F(DocumentPickerHooksTest, AMissingPickedFileSendsNothing) {
    sendDocuments(true);
    pick(NSURL::fileURLWithPath(NSString::create(home() + "/gone.pdf").get()));
    foundation::runMainLoopUntilIdle();
    EXPECT_TRUE(events().empty());
}

TEST_F(DocumentPickerHooksTest, ANonFileURLBecomesAFilePathOfItsWholeText) {
    sendDocuments(true);
    // A relative path: it resolves against the current directory.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(home());
    const std::string path = file("x-provider:shared.pdf");
    pick(NSURL::URLWithString(NSSTR("x-provider:shared.pdf")));
    pick(NSURL::URLWithString(NSSTR("x-provider:missing.pdf")));
    foundation::runMainLoopUntilIdle();
    std::filesystem::current_path(before);

    const auto sent = sentAttachments();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_TRUE(sent[0]->url->isFileURL());
    EXPECT_EQ(sent[0]->url->path()->utf8(), path);
}

// ---- Presentation -------------------------------------------------------------------

class ChatPresentationTest : public DocumentPickerHooksTest {
  protected:
    ChatPresentationTest() {
        window->setRootViewController(chat.get());
        window->makeKeyAndVisible();
    }
    void present() {
        hooks::presentForCurrentInterface(chat.get(), objc::sel<"_presentForCurrentInterface:">(),
                                          content.get());
    }
    ~ChatPresentationTest() override {
        if (chat->presentedViewController() != nullptr) {
            chat->dismissViewControllerAnimated(false, nullptr);
        }
        foundation::runMainLoopUntilIdle();
    }

    objc::Strong<UIWindow> window = UIWindow::create();
    objc::Strong<UIViewController> content = UIViewController::create();
};

TEST_F(ChatPresentationTest, OnIPadAPopoverIsAnchoredAtTheCentreOfTheWindowsLastSubview) {
    device(uikit::DeviceProfile::iPadAir2());
    // Added over the root view: the anchor, since the window class itself does
    // not answer rootViewController.
    const auto banner = UIView::create(CGRect{{0, 0}, {200, 60}});
    window->addSubview(banner.get());
    present();

    UIPopoverController* const popover = UIPopoverController::topVisiblePopover();
    ASSERT_NE(popover, nullptr);
    EXPECT_EQ(popover->contentViewController(), content.get());
    EXPECT_EQ(popover->delegate(), chat.get());
    EXPECT_EQ(popover->presentedInView(), banner.get());
    EXPECT_EQ(popover->presentedRect(), (CGRect{{100, 30}, {1, 1}}));
    EXPECT_EQ(popover->permittedArrowDirections(), UIPopoverArrowDirectionAny);
    EXPECT_EQ(chat->presentedViewController(), nullptr);
    // Only the popover's own hold on itself remains.
    EXPECT_EQ(objc_retainCount(popover), 1u);
}

TEST_F(ChatPresentationTest, OnIPhoneTheControllerIsPresentedModallyFromTheChat) {
    device(uikit::DeviceProfile::iPhone6s());
    present();
    EXPECT_EQ(chat->presentedViewController(), content.get());
    EXPECT_EQ(UIPopoverController::topVisiblePopover(), nullptr);
}

}  // namespace
