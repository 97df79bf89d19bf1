#include "host_fixture.h"

#include <Host/WAChatSessionViewController.h>
#include <Host/document_types.h>

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

TEST_F(ChatSessionTest, AnUnsupportedTypeIsRefusedWithAnAlertAndTheScreenMayOutgoItsSheet) {
    const std::string path = testsupport::makeFile("notes.txt", 10);
    chat->documentPickerDidPickDocumentAtURL(nullptr, NSURL::fileURL(path).get());
    EXPECT_TRUE(chat->messages().empty());
    UIAlertView* alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title()->utf8(), "Unsupported File Type");
    EXPECT_EQ(alert->buttonTitles(), std::vector<std::string>{"OK"});

    // The screen may go while its sheet is shown.
    auto sheet = WAActionSheet::create(nullptr);
    sheet->addButtonWithTitle(NSSTR("A"), nullptr);
    chat->showActionSheet(sheet.get());
    chat.reset();
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_FALSE(sheet->choose(0));
}

}  // namespace
