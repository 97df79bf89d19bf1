#include "host_fixture.h"

#include <Host/WAActionSheet.h>
#include <Host/WADocumentAttachment.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>

namespace {

using testsupport::HostTest;
using AttachmentTest = HostTest;

TEST_F(AttachmentTest, NameAndSizeComeFromTheFileIfThereIsOne) {
    const std::string path = testsupport::makeFile("Budget 2016.xlsx", 4096);
    auto url = NSURL::fileURL(path);
    auto attachment = WADocumentAttachment::create(url.get(), true);
    EXPECT_EQ(attachment->fileURL(), url.get());
    EXPECT_TRUE(attachment->transfersFileOwnership());
    EXPECT_EQ(attachment->fileName()->utf8(), "Budget 2016.xlsx");
    EXPECT_EQ(attachment->fileSize(), 4096u);
    EXPECT_TRUE(attachment->fileExisted());
    // A missing or remote file has no size.
    auto missing = WADocumentAttachment::create(
        NSURL::fileURL((testsupport::container() / "nothing.pdf").string()).get(), false);
    EXPECT_FALSE(missing->transfersFileOwnership());
    EXPECT_EQ(missing->fileSize(), 0u);
    EXPECT_FALSE(missing->fileExisted());
    auto remote =
        WADocumentAttachment::create(NSURL::create("http://example.com/a.pdf").get(), true);
    EXPECT_EQ(remote->fileName()->utf8(), "a.pdf");
    EXPECT_FALSE(remote->fileExisted());
    auto none = WADocumentAttachment::create(nullptr, true);
    EXPECT_EQ(none->fileName(), nullptr);
}

TEST_F(AttachmentTest, ActionSheetHandlersRunAfterTheSheetIsGone) {
    std::vector<std::string> log;
    auto sheet = WAActionSheet::create(NSSTR("Title"));
    bool visibleDuringHandler = true;
    WAActionSheet* const raw = sheet.get();
    sheet->addButtonWithTitle(NSSTR("One"), objc::makeBlock<void()>([&] {
                                                visibleDuringHandler = raw->isVisible();
                                                log.push_back("one");
                                            }).get());
    sheet->addCancelButtonWithTitle(NSSTR("Cancel"));
    EXPECT_EQ(sheet->title()->utf8(), "Title");
    EXPECT_FALSE(sheet->choose(0)) << "a sheet that is not shown cannot be chosen from";
    bool dismissed = false;
    sheet->markShown([&] { dismissed = true; });
    EXPECT_FALSE(sheet->choose(1)) << "the cancel button is not an entry";
    EXPECT_TRUE(sheet->choose(0));
    EXPECT_TRUE(dismissed);
    EXPECT_FALSE(visibleDuringHandler);
    EXPECT_EQ(log, std::vector<std::string>{"one"});
}

}  // namespace
