// The attach menu hooks: the entry the attach button's sheet gains, the flag
// that tells that sheet apart, and the sending of a file chosen in the tools
// library's browser (replaced here by a recorder of the blocks it is given).
#include <gtest/gtest.h>

#include "chat_screen_fakes.h"
#include "hooks/attach_menu_hooks.h"
#include "scratch_defaults.h"

#include <Foundation/NSBundle.h>
#include <Foundation/NSRunLoop.h>

#include <objc/message.h>
#include <objc/runtime.h>

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

using BrowserBlock = objc::Block<void(id, NSString*)>;

// What the library handed the tools library's file picker.
struct PickerRequest {
    id presenter = nullptr;
    objc::Strong<BrowserBlock> didSelectFile;
    objc::Strong<BrowserBlock> didLoadPath;
    objc::Strong<BrowserBlock> cancel;
};
std::vector<PickerRequest> pickerRequests;

void recordFilePicker(Class, SEL, id presenter, id didSelectFile, id didLoadPath, id cancel) {
    pickerRequests.push_back({presenter,
                              objc::retained(objc::blockCast<void(id, NSString*)>(didSelectFile)),
                              objc::retained(objc::blockCast<void(id, NSString*)>(didLoadPath)),
                              objc::retained(objc::blockCast<void(id, NSString*)>(cancel))});
}

// Stands in for +[TolbrennDevTools showFilePickerFromViewController:...] while
// it lives.
class FilePickerRecorder {
  public:
    FilePickerRecorder()
        : metaclass_(object_getClass(reinterpret_cast<id>(objc_getClass("TolbrennDevTools")))),
          saved_(class_replaceMethod(metaclass_, selector(),
                                     reinterpret_cast<IMP>(&recordFilePicker),
                                     "v48@0:8@16@?24@?32@?40")) {
        pickerRequests.clear();
    }
    ~FilePickerRecorder() {
        if (saved_ != nullptr) class_replaceMethod(metaclass_, selector(), saved_, nullptr);
        pickerRequests.clear();
    }
    FilePickerRecorder(const FilePickerRecorder&) = delete;
    FilePickerRecorder& operator=(const FilePickerRecorder&) = delete;

  private:
    static SEL selector() {
        return objc::sel<
            "showFilePickerFromViewController:didSelectFile:didLoadPath:cancelBlock:">();
    }
    Class metaclass_;
    IMP saved_;
};

class AttachMenuHooksTest : public ::testing::Test {
  protected:
    AttachMenuHooksTest() {
        // The flag lingers by design: start every case with it cleared.
        hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
        events().clear();
    }
    ~AttachMenuHooksTest() override {
        // Off first, so that clearing the flag opens no browser.
        sendFilesystem(false);
        hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
        foundation::runMainLoopUntilIdle();
        events().clear();
    }

    void sendFilesystem(bool on) {
        scratch.defaults()->setBoolForKey(on, NSSTR("send_filesystem_enabled"));
    }
    static std::string home() { return NSBundle::mainBundle()->bundlePath()->utf8(); }

    void pressAttachButton() {
        hooks::chatBarManagerWantsToAttachMedia(
            chat.get(), objc::sel<"chatBarManagerWantsToAttachMedia:">(), chatBar.get());
    }
    objc::Strong<FakeActionSheet> showSheet() {
        auto sheet = objc::make<FakeActionSheet>();
        hooks::showActionSheet(chat.get(), objc::sel<"showActionSheet:">(), sheet.get());
        return sheet;
    }

    objc::AutoreleasePool pool;
    parcelvane_testing::ScratchDefaults scratch;
    objc::Strong<FakeChatScreen> chat = objc::make<FakeChatScreen>();
    objc::Strong<NSObject> chatBar = objc::make<NSObject>();
    SlotRecorder attachHost{original::chatBarManagerWantsToAttachMedia,
                            SlotRecorder::Shape::OneObject};
    SlotRecorder sheetHost{original::showActionSheet, SlotRecorder::Shape::OneObject};
};

// ---- The entry ----------------------------------------------------------------------

TEST_F(AttachMenuHooksTest, TheAttachButtonIsPassedOnToTheHost) {
    pressAttachButton();
    ASSERT_EQ(eventNames(), std::vector<std::string>{"chatBarManagerWantsToAttachMedia:"});
    EXPECT_EQ(events()[0].receiver, chat.get());
    EXPECT_EQ(events()[0].first.get(), chatBar.get());
}

TEST_F(AttachMenuHooksTest, ASheetShownBeforeTheAttachButtonGetsNoEntry) {
    sendFilesystem(true);
    const auto sheet = showSheet();
    EXPECT_TRUE(sheet->buttons.empty());
    ASSERT_EQ(eventNames(), std::vector<std::string>{"showActionSheet:"});
    EXPECT_EQ(events()[0].first.get(), sheet.get());
}

TEST_F(AttachMenuHooksTest, TheAttachMenuShowsOnlyTheHostsEntriesWhileTheSettingIsOff) {
    sendFilesystem(false);
    pressAttachButton();
    const auto sheet = showSheet();
    EXPECT_TRUE(sheet->buttons.empty());
    EXPECT_EQ(eventNames(),
              (std::vector<std::string>{"chatBarManagerWantsToAttachMedia:", "showActionSheet:"}));
}

TEST_F(AttachMenuHooksTest, TheAttachMenuGainsAnEntryThatOpensTheFileBrowser) {
    sendFilesystem(true);
    pressAttachButton();
    const auto sheet = showSheet();
    ASSERT_EQ(sheet->buttons.size(), 1u);
    // No translation in the host's bundle: the key itself.
    EXPECT_EQ(sheet->buttons[0].title, "Share Document (Parcelvane)");
    // Added before the host shows the sheet.
    EXPECT_EQ(eventNames(),
              (std::vector<std::string>{"chatBarManagerWantsToAttachMedia:", "showActionSheet:"}));

    events().clear();
    (*sheet->buttons[0].handler)();
    ASSERT_EQ(eventNames(), std::vector<std::string>{"sendParcelvaneFile"});
    EXPECT_EQ(events()[0].receiver, chat.get());
    // The sheet belongs to the chat while shown: its entry must not keep the chat.
    EXPECT_EQ(objc_retainCount(chat.get()), 1u);
}

TEST_F(AttachMenuHooksTest, TheEntryTitleUsesTheHostsTranslation) {
    std::filesystem::create_directories(home() + "/en.lproj");
    std::ofstream(home() + "/en.lproj/Localizable.strings")
        << "\"Share Document\" = \"Send a Document\";\n";
    sendFilesystem(true);
    pressAttachButton();
    const auto sheet = showSheet();
    ASSERT_EQ(sheet->buttons.size(), 1u);
    EXPECT_EQ(sheet->buttons[0].title, "Send a Document (Parcelvane)");
}

TEST_F(AttachMenuHooksTest, TheFlagLingersUntilTheFileBrowserIsAskedFor) {
    sendFilesystem(true);
    pressAttachButton();
    EXPECT_EQ(showSheet()->buttons.size(), 1u);
    // A later sheet, of any chat screen, still gets the entry.
    const auto other = objc::make<FakeChatScreen>();
    auto sheet = objc::make<FakeActionSheet>();
    hooks::showActionSheet(other.get(), objc::sel<"showActionSheet:">(), sheet.get());
    EXPECT_EQ(sheet->buttons.size(), 1u);

    // Cleared even while the setting is off, when the browser does not open.
    sendFilesystem(false);
    const FilePickerRecorder picker;
    hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
    EXPECT_TRUE(pickerRequests.empty());
    sendFilesystem(true);
    EXPECT_TRUE(showSheet()->buttons.empty());
}

// ---- Sending from the file browser ----------------------------------------------------

class FileSendingTest : public AttachMenuHooksTest {
  protected:
    // Opens the browser through the library; answers the request it made.
    const PickerRequest& openBrowser() {
        hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
        if (pickerRequests.size() != 1) throw std::runtime_error("no file picker request");
        return pickerRequests.front();
    }
    std::vector<FakeDocumentAttachment*> sentAttachments() const {
        std::vector<FakeDocumentAttachment*> sent;
        for (const auto& event : events()) {
            if (event.what == "sendDocumentAttachment:") {
                sent.push_back(objc::cast<FakeDocumentAttachment>(event.first.get()));
            }
        }
        return sent;
    }

    FilePickerRecorder picker;
    objc::Strong<FakeFileBrowser> browser = objc::make<FakeFileBrowser>();
};

TEST_F(FileSendingTest, NothingOpensWhileTheSettingIsOff) {
    hooks::sendParcelvaneFile(chat.get(), objc::sel<"sendParcelvaneFile">());
    EXPECT_TRUE(pickerRequests.empty());
    EXPECT_TRUE(events().empty());
}

TEST_F(FileSendingTest, AChosenFileIsSentOnceTheBrowserHasGone) {
    sendFilesystem(true);
    const PickerRequest& request = openBrowser();
    EXPECT_EQ(request.presenter, chat.get());
    const std::string path = home() + "/notes.txt";
    std::ofstream(path) << "notes";

    (*request.didSelectFile)(browser.get(), NSString::create(path).get());
    EXPECT_EQ(browser->dismissals, 1);
    EXPECT_TRUE(browser->dismissedAnimated);
    EXPECT_TRUE(events().empty()) << "sent before the browser went away";

    browser->finishDismissal();
    const auto sent = sentAttachments();
    ASSERT_EQ(sent.size(), 1u);
    ASSERT_NE(sent[0], nullptr);
    EXPECT_EQ(sent[0]->url->path()->utf8(), path);
    EXPECT_TRUE(sent[0]->transfersOwnership);
    EXPECT_EQ(objc_retainCount(sent[0]), 1u);
}

TEST_F(FileSendingTest, AFileGoneBeforeTheBrowserHasGoneSendsNothing) {
    sendFilesystem(true);
    const PickerRequest& request = openBrowser();
    const std::string path = home() + "/brief.bin";
    std::ofstream(path) << "x";
    (*request.didSelectFile)(browser.get(), NSString::create(path).get());
    std::filesystem::remove(path);
    browser->finishDismissal();
    EXPECT_TRUE(events().empty());
}

TEST_F(FileSendingTest, AFileOfNoKnownTypeIsSentAllTheSame) {
    sendFilesystem(true);
    const PickerRequest& request = openBrowser();
    const std::string path = home() + "/archive.zzqq9";
    std::ofstream(path) << "x";
    (*request.didSelectFile)(browser.get(), NSString::create(path).get());
    browser->finishDismissal();
    EXPECT_EQ(sentAttachments().size(), 1u);
}

TEST_F(FileSendingTest, CancellingDismissesTheBrowserAndSendsNothing) {
    sendFilesystem(true);
    const PickerRequest& request = openBrowser();
    (*request.didLoadPath)(browser.get(), NSSTR("/"));
    EXPECT_EQ(browser->dismissals, 0);
    (*request.cancel)(browser.get(), NSSTR("/"));
    EXPECT_EQ(browser->dismissals, 1);
    EXPECT_TRUE(browser->dismissedAnimated);
    browser->finishDismissal();
    EXPECT_TRUE(events().empty());
}

}  // namespace
