#include "host_fixture.h"

#include <Host/DocumentTypes.h>
#include <Host/WAChatSessionViewController.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>

namespace {

using hosttest::HostTest;

class ChatSessionTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        chat = WAChatSessionViewController::create("Alice", store);
    }
    UIDocumentMenuViewController* presentedMenu() {
        return objc::cast<UIDocumentMenuViewController>(chat->presentedViewController());
    }
    objc::Strong<WAChatSessionViewController> chat;
};

TEST_F(ChatSessionTest, ShareDocumentOpensTheMenuWithTheHostsTypes) {
    chat->presentShareDocumentController();
    UIDocumentMenuViewController* menu = presentedMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->typeList(), host::shareDocumentTypes());
    EXPECT_EQ(menu->mode(), UIDocumentPickerModeImport);
    EXPECT_EQ(menu->delegate(), chat.get());
    drain();
}

TEST_F(ChatSessionTest, APickedSupportedDocumentIsSent) {
    // The picker's import copy, which is the host's to take.
    const std::string path =
        hosttest::makeFile("Report.PDF", 1234, UIDocumentPickerViewController::inboxFolder());
    chat->documentPickerDidPickDocumentAtURL(nullptr, NSURL::fileURL(path).get());
    drain();
    const auto messages = chat->messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].state, host::Message::State::Sent);
    EXPECT_EQ(messages[0].kind, host::Message::Kind::Document);
    EXPECT_EQ(messages[0].text, "Report.PDF");
    EXPECT_EQ(messages[0].fileSize, 1234u);
    // A picked file is handed over: the Inbox copy moves to the media folder.
    EXPECT_EQ(std::filesystem::path(messages[0].filePath).parent_path().parent_path(),
              hosttest::container() / "Library" / "Media");
    EXPECT_EQ(std::filesystem::file_size(messages[0].filePath), 1234u);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(UIAlertView::topVisibleAlert(), nullptr);
}

TEST_F(ChatSessionTest, AnUnsupportedTypeIsRefusedWithAnAlert) {
    const std::string path = hosttest::makeFile("notes.txt", 10);
    chat->documentPickerDidPickDocumentAtURL(nullptr, NSURL::fileURL(path).get());
    EXPECT_TRUE(chat->messages().empty());
    UIAlertView* alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title()->utf8(), "Unsupported File Type");
    EXPECT_EQ(alert->buttonTitles(), std::vector<std::string>{"OK"});
}

TEST_F(ChatSessionTest, AMissingFileIsReportedNotSent) {
    const auto missing = NSURL::fileURL((hosttest::container() / "gone.docx").string());
    chat->documentPickerDidPickDocumentAtURL(nullptr, missing.get());
    EXPECT_TRUE(chat->messages().empty());
    ASSERT_NE(UIAlertView::topVisibleAlert(), nullptr);
    EXPECT_EQ(UIAlertView::topVisibleAlert()->title()->utf8(), "File Not Found");
    chat->documentPickerDidPickDocumentAtURL(nullptr, nullptr);  // ignored
}

TEST_F(ChatSessionTest, TheAttachMenuListsTheHostsEntriesThenCancel) {
    chat->chatBarManagerWantsToAttachMedia(nullptr);
    WAActionSheet* sheet = chat->visibleActionSheet();
    ASSERT_NE(sheet, nullptr);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(sheet->entryTitles(),
              (std::vector<std::string>{"Take Photo or Video", "Photo & Video Library",
                                        "Share Document", "Share Location", "Share Contact"}));
    EXPECT_EQ(sheet->cancelTitle(), "Cancel");
    EXPECT_EQ(sheet->buttonTitles()->count(), 6u);
    sheet->cancel();
    EXPECT_EQ(chat->visibleActionSheet(), nullptr);
}

TEST_F(ChatSessionTest, OtherEntriesExplainWhyTheyCannotWork) {
    for (std::size_t entry : {0u, 1u, 3u, 4u}) {
        chat->chatBarManagerWantsToAttachMedia(nullptr);
        ASSERT_TRUE(chat->visibleActionSheet()->choose(entry));
        UIAlertView* alert = UIAlertView::topVisibleAlert();
        ASSERT_NE(alert, nullptr) << entry;
        alert->tapButton(0);
    }
    EXPECT_TRUE(chat->messages().empty());
}

TEST_F(ChatSessionTest, AScreenMayGoWhileItsSheetIsShown) {
    auto sheet = WAActionSheet::create(nullptr);
    sheet->addButtonWithTitle(NSSTR("A"), nullptr);
    chat->showActionSheet(sheet.get());
    chat.reset();
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_FALSE(sheet->choose(0));
}

TEST_F(ChatSessionTest, SendingAnAttachmentAppendsADocumentMessage) {
    const std::string path = hosttest::makeFile("slides.key", 3);
    auto attachment = WADocumentAttachment::create(NSURL::fileURL(path).get(), false);
    chat->sendDocumentAttachment(attachment.get());
    chat->sendDocumentAttachment(nullptr);
    drain();
    ASSERT_EQ(store->messages("Alice").size(), 1u);
    EXPECT_EQ(store->messages("Alice")[0].text, "slides.key");
    EXPECT_EQ(store->chatNames(), std::vector<std::string>{"Alice"});
}

}  // namespace
