// The document picker over a provider folder.
#include "scratch_folder.h"
#include "uikit_fixture.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>
#include <Foundation/process_environment.h>

#include <objc/image.h>

#include <filesystem>

namespace fs = std::filesystem;

// Logs the picker delegate messages it hears.
class PickerDelegate : public NSObject {
    OBJC_CLASS(PickerDelegate)

    std::vector<std::string> log;
    std::vector<std::string> urls;

  private:
    void imp_didPick(id, NSURL* url) {
        log.push_back("didPick");
        urls.push_back(url->isFileURL() ? url->path()->utf8() : std::string("not a file URL"));
    }
    void imp_cancelled(id) { log.push_back("cancelled"); }
};

OBJC_DEFINE_CLASS(PickerDelegate, NSObject, "PickerDelegate")
OBJC_REGISTER_CLASS(PickerDelegate)

void PickerDelegate::objcDefine(objc::ClassBuilder<PickerDelegate>& b) {
    b.method<&PickerDelegate::imp_didPick>("documentPicker:didPickDocumentAtURL:")
        .method<&PickerDelegate::imp_cancelled>("documentPickerWasCancelled:");
}

namespace {

using testsupport::readFile;
using testsupport::writeFile;

std::vector<std::string> names(const std::vector<UIDocumentPickerViewController::Entry>& list) {
    std::vector<std::string> out;
    for (const auto& e : list) out.push_back(e.name);
    return out;
}

// A scratch root: an app container ("App") and a provider folder with a PDF, zip, and sub-folder.
class DocumentPickerTest : public UIKitTest {
  protected:
    void SetUp() override {
        UIKitTest::SetUp();
        home = root / "App";
        fs::create_directories(home / "tmp");
        foundation::configureProcess({home.string(), "", {"en"}});
        providerFolder = uikit::defaultDocumentProviderFolder("iCloud Drive");
        writeFile(providerFolder / "Report.pdf", "%PDF-1.4 report");
        writeFile(providerFolder / "Archive.zip", "PK\x03\x04");
        writeFile(providerFolder / ".hidden.pdf", "hidden");
        writeFile(providerFolder / "Work" / "Letter.docx", "PK docx");
    }
    void TearDown() override {
        UIKitTest::TearDown();
        foundation::configureProcess({});
    }
    // The host's types (a zip archive conforms to none of them) or public.data.
    static objc::Strong<UIDocumentPickerViewController> picker(bool hostTypes,
                                                               UIDocumentPickerMode mode) {
        auto types = hostTypes
                         ? NSArray::create({NSSTR("com.adobe.pdf"),
                                            NSSTR("org.openxmlformats.wordprocessingml.document")})
                         : NSArray::create({NSSTR("public.data")});
        return UIDocumentPickerViewController::create(types.get(), mode);
    }

    const testsupport::ScratchFolder root{"picker-test"};
    fs::path home;
    fs::path providerFolder;
};

TEST_F(DocumentPickerTest, ListsFoldersThenConformingFilesAndOpensNoFolderAboveTheProvider) {
    auto all = picker(false, UIDocumentPickerModeImport);
    EXPECT_EQ(all->currentFolder(), providerFolder.string());  // beside the container
    EXPECT_EQ(names(all->entries()),
              (std::vector<std::string>{"Work", "Archive.zip", "Report.pdf"}));
    EXPECT_EQ(all->entries()[2].type, "com.adobe.pdf");

    auto documents = picker(true, UIDocumentPickerModeImport);
    EXPECT_EQ(names(documents->entries()), (std::vector<std::string>{"Work", "Report.pdf"}));
    EXPECT_EQ(UIDocumentPickerViewController::create(nullptr, UIDocumentPickerModeImport)
                  ->entries()
                  .size(),
              1u);  // only "Work"

    // Folders open, but not above the provider; a missing one lists nothing.
    auto p = picker(true, UIDocumentPickerModeOpen);
    EXPECT_FALSE(p->openParentFolder());
    EXPECT_FALSE(p->openFolderAtIndex(1));  // a file
    EXPECT_FALSE(p->openFolderAtIndex(7));
    ASSERT_TRUE(p->openFolderAtIndex(0));
    EXPECT_EQ(names(p->entries()), std::vector<std::string>{"Letter.docx"});
    EXPECT_TRUE(p->openParentFolder());
    EXPECT_EQ(p->currentFolder(), providerFolder.string());

    p->setProvider({"Elsewhere", (root / "missing").string()});
    EXPECT_TRUE(p->entries().empty());
    EXPECT_FALSE(p->pickFileAtIndex(0));
}

TEST_F(DocumentPickerTest, ImportCopiesIntoTheInboxUnderAFreeNameAndCancellingTellsTheDelegate) {
    auto delegate = objc::make<PickerDelegate>();
    auto presenter = UIViewController::create();
    auto p = picker(true, UIDocumentPickerModeImport);
    p->setDelegate(delegate.get());
    const fs::path inbox = UIDocumentPickerViewController::inboxFolder();
    EXPECT_EQ(inbox.parent_path(), home / "tmp");

    presenter->presentViewController(p.get(), false, nullptr);
    drain();
    EXPECT_FALSE(p->pickFileAtIndex(0));  // a folder
    ASSERT_TRUE(p->pickFileAtIndex(1));
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_TRUE(delegate->log.empty());  // after the dismissal
    drain();
    ASSERT_EQ(delegate->urls.size(), 1u);
    EXPECT_EQ(fs::path(delegate->urls[0]), inbox / "Report.pdf");
    EXPECT_EQ(readFile(inbox / "Report.pdf"), "%PDF-1.4 report");
    EXPECT_EQ(readFile(providerFolder / "Report.pdf"), "%PDF-1.4 report");

    // The same name again keeps the first copy and numbers the second.
    writeFile(providerFolder / "Report.pdf", "second");
    ASSERT_TRUE(p->pickFileAtIndex(1));
    drain();
    ASSERT_EQ(delegate->urls.size(), 2u);
    EXPECT_EQ(fs::path(delegate->urls[1]), inbox / "Report 2.pdf");
    EXPECT_EQ(readFile(inbox / "Report 2.pdf"), "second");
    EXPECT_EQ(readFile(inbox / "Report.pdf"), "%PDF-1.4 report");
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"didPick", "didPick"}));

    // Cancelling tells a delegate that listens.
    presenter->presentViewController(p.get(), false, nullptr);
    p->cancel();
    drain();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"didPick", "didPick", "cancelled"}));

    // A delegate without the optional method is left alone.
    auto quiet = objc::make<RecordingDelegate>();
    auto other = picker(false, UIDocumentPickerModeImport);
    other->setDelegate(quiet.get());
    other->cancel();
    drain();
    EXPECT_TRUE(quiet->log.empty());
}

}  // namespace
