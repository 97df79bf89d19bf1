// The chat screen's hooks called as the host does, against fakes and the platform's document menu.
#include <gtest/gtest.h>

#include "chat_screen_fakes.h"
#include "hooks/attach_menu_hooks.h"
#include "hooks/document_picker_hooks.h"
#include "scratch_defaults.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSRunLoop.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/device_profile.h>

#include <objc/message.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using testsupport::eventNames;
using testsupport::events;
using testsupport::SlotRecorder;
using Strings = std::vector<std::string>;
namespace hooks = parcelvane::hooks;

class ChatScreenHooksTest : public ::testing::Test {
  protected:
    ChatScreenHooksTest() {
        testsupport::libraryInstalled();
        events().clear();
    }
    ~ChatScreenHooksTest() override {
        events().clear();
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
    }

    void enable(const char* key, bool on) {
        scratch.defaults()->setBoolForKey(on, NSString::create(key).get());
    }
    void share() {
        hooks::presentShareDocumentController(chat.get(),
                                              objc::sel<"presentShareDocumentController">());
    }
    static objc::Strong<UIDocumentMenuViewController> menuFor(const char* type,
                                                              UIDocumentPickerMode mode) {
        return UIDocumentMenuViewController::create(NSArray::create({NSString::create(type)}).get(),
                                                    mode);
    }

    objc::AutoreleasePool pool;
    testsupport::ScratchDefaults scratch;
    objc::Strong<FakeChatScreen> chat = objc::make<FakeChatScreen>();
    SlotRecorder shareHost{hooks::Original<&hooks::presentShareDocumentController>::imp,
                           SlotRecorder::Shape::NoArguments};
};

TEST_F(ChatScreenHooksTest, WhileSendDocumentsIsOffTheHostsOwnBehaviourRuns) {
    enable("send_documents_enabled", false);
    const auto menu = menuFor("com.adobe.pdf", UIDocumentPickerModeMoveToService);
    EXPECT_EQ(menu->typeList(), Strings{"com.adobe.pdf"});
    EXPECT_EQ(menu->mode(), 3u);
    share();
    ASSERT_EQ(eventNames(), Strings{"presentShareDocumentController"});
    EXPECT_EQ(events()[0].receiver, chat.get());
}

TEST_F(ChatScreenHooksTest, WhileOnEveryMenuTakesAllDataAndTheShareActionPresentsOne) {
    enable("send_documents_enabled", true);
    const auto menu = menuFor("com.adobe.pdf", UIDocumentPickerModeExportToService);
    EXPECT_EQ(menu->typeList(), Strings{"public.data"});
    EXPECT_EQ(menu->mode(), UIDocumentPickerModeImport);

    share();
    ASSERT_EQ(eventNames(), Strings{"_presentForCurrentInterface:"});
    auto* const presented = objc::cast<UIDocumentMenuViewController>(events()[0].first.get());
    ASSERT_NE(presented, nullptr);
    EXPECT_EQ(presented->typeList(), Strings{"public.data"});
    EXPECT_EQ(presented->delegate(), chat.get());

    // No document menu before iOS 8: the file browser's path instead.
    events().clear();
    auto old = uikit::DeviceProfile::iPhone4s();
    old.systemVersion = "7.1.2";
    uikit::configureDevice(old);
    share();
    EXPECT_EQ(eventNames(), Strings{"sendParcelvaneFile"});
}

TEST_F(ChatScreenHooksTest, APickerChosenFromAMenuIsAFormSheetWhateverTheSetting) {
    const SlotRecorder host(hooks::Original<&hooks::documentMenuDidPickDocumentPicker>::imp,
                            SlotRecorder::Shape::TwoObjects);
    const auto menu = UIViewController::create();
    for (const bool on : {false, true}) {
        events().clear();
        enable("send_documents_enabled", on);
        const auto picker = UIViewController::create();
        hooks::documentMenuDidPickDocumentPicker(chat.get(),
                                                 objc::sel<"documentMenu:didPickDocumentPicker:">(),
                                                 menu.get(), picker.get());
        EXPECT_EQ(picker->modalPresentationStyle(), UIModalPresentationFormSheet);
        ASSERT_EQ(eventNames(), Strings{"documentMenu:didPickDocumentPicker:"});
        EXPECT_EQ(events()[0].second.get(), picker.get());
    }
}

TEST_F(ChatScreenHooksTest, APickedFileIsSentOnTheNextTurnOfTheMainQueueIfItExists) {
    const SlotRecorder host(hooks::Original<&hooks::documentPickerDidPickDocumentAtURL>::imp,
                            SlotRecorder::Shape::TwoObjects);
    enable("send_documents_enabled", true);
    // A URL that is no file URL: its whole text is a path, relative to the current folder.
    const std::filesystem::path before = std::filesystem::current_path();
    const std::string home = NSBundle::mainBundle()->bundlePath()->utf8();
    std::filesystem::current_path(home);
    std::ofstream(home + "/x-provider:shared.pdf") << "shared";
    const auto picker = UIViewController::create();
    for (const char* url : {"x-provider:shared.pdf", "x-provider:missing.pdf"}) {
        hooks::documentPickerDidPickDocumentAtURL(
            chat.get(), objc::sel<"documentPicker:didPickDocumentAtURL:">(), picker.get(),
            NSURL::URLWithString(NSString::create(url).get()));
    }
    EXPECT_TRUE(events().empty()) << "sent before the main queue ran";
    foundation::runMainLoopUntilIdle();
    std::filesystem::current_path(before);

    ASSERT_EQ(eventNames(), Strings{"sendDocumentAttachment:"});
    auto* const sent = objc::cast<FakeDocumentAttachment>(events()[0].first.get());
    ASSERT_NE(sent, nullptr);
    EXPECT_EQ(sent->url->path()->utf8(), home + "/x-provider:shared.pdf");
    EXPECT_TRUE(sent->transfersOwnership);
    // The chat screen alone holds the attachment: the library let go of its own.
    EXPECT_EQ(objc_retainCount(sent), 1u);
}

TEST_F(ChatScreenHooksTest, OnlyTheAttachMenuGainsTheEntryUnderTheHostsTranslatedTitle) {
    const SlotRecorder attachHost(hooks::Original<&hooks::chatBarManagerWantsToAttachMedia>::imp,
                                  SlotRecorder::Shape::OneObject);
    const SlotRecorder sheetHost(hooks::Original<&hooks::showActionSheet>::imp,
                                 SlotRecorder::Shape::OneObject);
    const std::string home = NSBundle::mainBundle()->bundlePath()->utf8();
    testsupport::writeFile(home + "/en.lproj/Localizable.strings",
                           "\"Share Document\" = \"Send a Document\";\n");
    enable("send_filesystem_enabled", true);
    const auto showSheet = [&] {
        auto sheet = objc::make<FakeActionSheet>();
        hooks::showActionSheet(chat.get(), objc::sel<"showActionSheet:">(), sheet.get());
        return sheet;
    };
    EXPECT_TRUE(showSheet()->buttons.empty()) << "a sheet before the attach button";

    events().clear();
    hooks::chatBarManagerWantsToAttachMedia(
        chat.get(), objc::sel<"chatBarManagerWantsToAttachMedia:">(), nullptr);
    const auto sheet = showSheet();
    ASSERT_EQ(sheet->buttons.size(), 1u);
    EXPECT_EQ(sheet->buttons[0].title, "Send a Document (Parcelvane)");
    // Added before the host shows the sheet.
    EXPECT_EQ(eventNames(), (Strings{"chatBarManagerWantsToAttachMedia:", "showActionSheet:"}));

    events().clear();
    (*sheet->buttons[0].handler)();
    EXPECT_EQ(eventNames(), Strings{"sendParcelvaneFile"});
    // The sheet belongs to the chat while shown: its entry must not keep the chat.
    EXPECT_EQ(objc_retainCount(chat.get()), 1u);

    // The flag lingers until the browser is asked for; with the setting off that only clears it.
    enable("send_filesystem_enabled", false);
    hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
    enable("send_filesystem_enabled", true);
    EXPECT_TRUE(showSheet()->buttons.empty());
}

}  // namespace
