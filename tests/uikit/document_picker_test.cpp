// The document picker over a provider folder, and the menu that makes one.
#include "uikit_fixture.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>
#include <Foundation/ProcessEnvironment.h>

#include <objc/image.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

// Logs the picker and menu delegate messages it hears.
class PickerDelegate : public NSObject {
    OBJC_CLASS(PickerDelegate)

    std::vector<std::string> log;
    std::vector<std::string> urls;
    objc::Strong<UIDocumentPickerViewController> picker;  // from the menu
    UIDocumentMenuViewController* menu = nullptr;

  private:
    void imp_menuDidPick(UIDocumentMenuViewController* m, UIDocumentPickerViewController* p) {
        log.push_back("menuDidPick");
        menu = m;
        picker = objc::retained(p);
    }
    void imp_didPick(id, NSURL* url) {
        log.push_back("didPick");
        urls.push_back(url->isFileURL() ? url->path()->utf8() : std::string("not a file URL"));
    }
    void imp_cancelled(id) { log.push_back("cancelled"); }
};

OBJC_DEFINE_CLASS(PickerDelegate, NSObject, "PickerDelegate")
OBJC_REGISTER_CLASS(PickerDelegate)

void PickerDelegate::objcDefine(objc::ClassBuilder<PickerDelegate>& b) {
    b.method<&PickerDelegate::imp_menuDidPick>("documentMenu:didPickDocumentPicker:")
        .method<&PickerDelegate::imp_didPick>("documentPicker:didPickDocumentAtURL:")
        .method<&PickerDelegate::imp_cancelled>("documentPickerWasCancelled:");
}

namespace {

const std::vector<std::string> kHostTypes = {
    "com.adobe.pdf",
    "com.microsoft.word.doc",
    "org.openxmlformats.wordprocessingml.document",
    "com.microsoft.excel.xls",
    "org.openxmlformats.spreadsheetml.sheet",
    "com.microsoft.powerpoint.ppt",
    "org.openxmlformats.presentationml.presentation",
};

objc::Strong<NSArray> stringArray(const std::vector<std::string>& texts) {
    std::vector<objc::Strong<NSString>> strings;
    std::vector<id> items;
    for (const std::string& text : texts) {
        strings.push_back(NSString::create(text));
        items.push_back(strings.back().get());
    }
    return NSArray::create(std::move(items));
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> names(const std::vector<UIDocumentPickerViewController::Entry>& list) {
    std::vector<std::string> out;
    for (const auto& e : list) out.push_back(e.name);
    return out;
}

// A scratch root holding an app container ("App") and a provider folder
// with a PDF, a zip archive and a sub-folder holding a Word document.
class DocumentPickerTest : public UIKitTest {
  protected:
    void SetUp() override {
        UIKitTest::SetUp();
        std::string pattern = (fs::temp_directory_path() / "picker-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root = pattern;
        home = root / "App";
        fs::create_directories(home / "tmp");
        foundation::configureProcess({home.string(), "", {"en"}});
        providerFolder = uikit::defaultDocumentProviderFolder("iCloud Drive");
        fs::create_directories(providerFolder / "Work");
        write(providerFolder / "Report.pdf", "%PDF-1.4 report");
        write(providerFolder / "Archive.zip", "PK\x03\x04");
        write(providerFolder / ".hidden.pdf", "hidden");
        write(providerFolder / "Work" / "Letter.docx", "PK docx");
    }
    void TearDown() override {
        UIKitTest::TearDown();
        foundation::configureProcess({});
        std::error_code error;
        fs::remove_all(root, error);
    }
    static void write(const fs::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    objc::Strong<UIDocumentPickerViewController> picker(const std::vector<std::string>& types,
                                                        UIDocumentPickerMode mode) {
        return UIDocumentPickerViewController::create(stringArray(types).get(), mode);
    }

    fs::path root;
    fs::path home;
    fs::path providerFolder;
};

TEST_F(DocumentPickerTest, TheDefaultProviderLivesBesideTheContainer) {
    EXPECT_EQ(providerFolder, root / "DocumentProviders" / "iCloud Drive");
    const auto providers = uikit::currentDocumentProviders();
    ASSERT_EQ(providers.size(), 1u);
    EXPECT_EQ(providers[0].name, "iCloud Drive");
    EXPECT_EQ(uikit::documentProviderFolder(providers[0]), providerFolder.string());
    // A trailing slash on the home names the same container.
    foundation::configureProcess({home.string() + "/", "", {"en"}});
    EXPECT_EQ(uikit::defaultDocumentProviderFolder("iCloud Drive"), providerFolder.string());
}

TEST_F(DocumentPickerTest, ListsFoldersThenTheFilesWhoseTypeConforms) {
    auto all = picker({"public.data"}, UIDocumentPickerModeImport);
    EXPECT_EQ(all->currentFolder(), providerFolder.string());
    EXPECT_EQ(names(all->entries()),
              (std::vector<std::string>{"Work", "Archive.zip", "Report.pdf"}));
    const auto entries = all->entries();
    EXPECT_TRUE(entries[0].isFolder);
    EXPECT_EQ(entries[2].type, "com.adobe.pdf");

    auto documents = picker(kHostTypes, UIDocumentPickerModeImport);
    EXPECT_EQ(names(documents->entries()), (std::vector<std::string>{"Work", "Report.pdf"}));
    EXPECT_TRUE(picker({}, UIDocumentPickerModeImport)->entries().size() == 1u);  // only "Work"
}

TEST_F(DocumentPickerTest, FoldersCanBeOpenedAndLeftButNotAboveTheProvider) {
    auto p = picker(kHostTypes, UIDocumentPickerModeOpen);
    EXPECT_FALSE(p->openParentFolder());
    EXPECT_FALSE(p->openFolderAtIndex(1));  // a file
    EXPECT_FALSE(p->openFolderAtIndex(7));
    ASSERT_TRUE(p->openFolderAtIndex(0));
    EXPECT_EQ(names(p->entries()), std::vector<std::string>{"Letter.docx"});
    EXPECT_TRUE(p->openParentFolder());
    EXPECT_EQ(p->currentFolder(), providerFolder.string());
}

TEST_F(DocumentPickerTest, AMissingProviderFolderListsNothing) {
    auto p = picker({"public.data"}, UIDocumentPickerModeImport);
    p->setProvider({"Elsewhere", (root / "missing").string()});
    EXPECT_TRUE(p->entries().empty());
    EXPECT_FALSE(p->pickFileAtIndex(0));
}

TEST_F(DocumentPickerTest, ImportCopiesIntoTheInboxUnderAFreeName) {
    auto delegate = objc::make<PickerDelegate>();
    auto presenter = UIViewController::create();
    auto p = picker(kHostTypes, UIDocumentPickerModeImport);
    p->setDelegate(delegate.get());
    const fs::path inbox = UIDocumentPickerViewController::inboxFolder();
    EXPECT_EQ(inbox.parent_path(), home / "tmp");
    EXPECT_TRUE(inbox.filename().string().ends_with("Inbox"));

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
    write(providerFolder / "Report.pdf", "second");
    ASSERT_TRUE(p->pickFileAtIndex(1));
    drain();
    ASSERT_EQ(delegate->urls.size(), 2u);
    EXPECT_EQ(fs::path(delegate->urls[1]), inbox / "Report 2.pdf");
    EXPECT_EQ(readFile(inbox / "Report 2.pdf"), "second");
    EXPECT_EQ(readFile(inbox / "Report.pdf"), "%PDF-1.4 report");
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"didPick", "didPick"}));
}

TEST_F(DocumentPickerTest, OpenModeHandsOverTheOriginal) {
    auto delegate = objc::make<PickerDelegate>();
    auto p = picker({"public.data"}, UIDocumentPickerModeOpen);
    EXPECT_EQ(p->documentPickerMode(), UIDocumentPickerModeOpen);
    p->setDelegate(delegate.get());
    ASSERT_TRUE(p->pickFileAtIndex(1));
    drain();
    EXPECT_EQ(delegate->urls, std::vector<std::string>{(providerFolder / "Archive.zip").string()});
    EXPECT_FALSE(fs::exists(UIDocumentPickerViewController::inboxFolder()));
}

TEST_F(DocumentPickerTest, CancellingTellsADelegateThatListens) {
    auto delegate = objc::make<PickerDelegate>();
    auto presenter = UIViewController::create();
    auto p = picker({"public.data"}, UIDocumentPickerModeImport);
    p->setDelegate(delegate.get());
    presenter->presentViewController(p.get(), false, nullptr);
    p->cancel();
    drain();
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_EQ(delegate->log, std::vector<std::string>{"cancelled"});

    // A delegate without the optional method is left alone.
    auto quiet = objc::make<RecordingDelegate>();
    auto other = picker({"public.data"}, UIDocumentPickerModeImport);
    other->setDelegate(quiet.get());
    other->cancel();
    drain();
    EXPECT_TRUE(quiet->log.empty());
}

TEST_F(DocumentPickerTest, TheMenuHandsItsDelegateAPickerForItsTypesAndMode) {
    uikit::DeviceProfile device = uikit::DeviceProfile::defaultProfile();
    device.documentProviders.push_back({"Work Files", (providerFolder / "Work").string()});
    uikit::configureDevice(device);

    auto delegate = objc::make<PickerDelegate>();
    auto presenter = UIViewController::create();
    auto menu = UIDocumentMenuViewController::create(stringArray(kHostTypes).get(),
                                                     UIDocumentPickerModeOpen);
    menu->setDelegate(delegate.get());
    ASSERT_EQ(menu->providers().size(), 2u);
    EXPECT_EQ(menu->providers()[1].name, "Work Files");
    EXPECT_FALSE(menu->chooseProvider(2));

    presenter->presentViewController(menu.get(), false, nullptr);
    drain();
    ASSERT_TRUE(menu->chooseProvider(1));
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    drain();
    EXPECT_EQ(delegate->log, std::vector<std::string>{"menuDidPick"});
    EXPECT_EQ(delegate->menu, menu.get());
    ASSERT_TRUE(delegate->picker);
    UIDocumentPickerViewController* chosen = delegate->picker.get();
    EXPECT_EQ(chosen->typeList(), kHostTypes);
    EXPECT_EQ(chosen->mode(), UIDocumentPickerModeOpen);
    EXPECT_EQ(chosen->provider().name, "Work Files");
    EXPECT_EQ(names(chosen->entries()), std::vector<std::string>{"Letter.docx"});

    // The delegate presents the picker, as the chat screen does.
    presenter->presentViewController(chosen, false, nullptr);
    drain();
    EXPECT_EQ(presenter->presentedViewController(), chosen);
    chosen->cancel();
    drain();
}

}  // namespace
