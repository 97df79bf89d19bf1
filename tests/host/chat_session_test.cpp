#include "host_fixture.h"

#include <Host/DocumentTypes.h>
#include <Host/WAChatSessionViewController.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>

namespace {

using testsupport::HostTest;

class ChatSessionTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        chat = WAChatSessionViewController::create("Alice", store);
    }
    objc::Strong<WAChatSessionViewController> chat;
};

TEST_F(ChatSessionTest, APickedSupportedDocumentIsSent) {
    // The picker's import copy, which is the host's to take.
    const std::string path =
        testsupport::makeFile("Report.PDF", 1234, UIDocumentPickerViewController::inboxFolder());
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
              testsupport::container() / "Library" / "Media");
    EXPECT_EQ(std::filesystem::file_size(messages[0].filePath), 1234u);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(UIAlertView::topVisibleAlert(), nullptr);
}

TEST_F(ChatSessionTest, AnUnsupportedTypeIsRefusedWithAnAlert) {
    const std::string path = testsupport::makeFile("notes.txt", 10);
    chat->documentPickerDidPickDocumentAtURL(nullptr, NSURL::fileURL(path).get());
    EXPECT_TRUE(chat->messages().empty());
    UIAlertView* alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title()->utf8(), "Unsupported File Type");
    EXPECT_EQ(alert->buttonTitles(), std::vector<std::string>{"OK"});
}

TEST_F(ChatSessionTest, AMissingFileIsReportedNotSent) {
    const auto missing = NSURL::fileURL((testsupport::container() / "gone.docx").string());
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

TEST_F(ChatSessionTest, AScreenMayGoWhileItsSheetIsShown) {
    auto sheet = WAActionSheet::create(nullptr);
    sheet->addButtonWithTitle(NSSTR("A"), nullptr);
    chat->showActionSheet(sheet.get());
    chat.reset();
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_FALSE(sheet->choose(0));
}

}  // namespace
