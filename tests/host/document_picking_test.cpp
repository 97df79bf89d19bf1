// What the host takes from a document provider: its types decide by
// conformance, and a file picked through the menu and the picker arrives
// in the chat as the app's own copy.
#include "host_fixture.h"

#include <Host/DocumentTypes.h>
#include <Host/WAChatSessionViewController.h>

#include <fstream>

namespace {

using hosttest::HostTest;

TEST(HostDocumentTypes, AcceptByConformanceToTheHostsTypes) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(host::documentTypeForExtension("pdf"), "com.adobe.pdf");
    EXPECT_EQ(host::documentTypeForExtension("DocX"),
              "org.openxmlformats.wordprocessingml.document");
    EXPECT_EQ(host::documentTypeForExtension("pptx"),
              "org.openxmlformats.presentationml.presentation");
    for (const char* ext : {"pdf", "PDF", "doc", "docx", "xls", "xlsx", "ppt", "pptx"}) {
        EXPECT_TRUE(host::isSupportedDocumentExtension(ext)) << ext;
    }
    // A zip archive is what the office formats are made of, not one of them.
    for (const char* ext : {"zip", "txt", "jpg", "", ".pdf", "unknownext"}) {
        EXPECT_FALSE(host::isSupportedDocumentExtension(ext)) << ext;
    }
    EXPECT_TRUE(host::isSupportedDocumentType("com.adobe.pdf"));
    EXPECT_TRUE(host::isSupportedDocumentType("COM.ADOBE.PDF"));
    EXPECT_FALSE(host::isSupportedDocumentType("public.zip-archive"));
    EXPECT_FALSE(host::isSupportedDocumentType("public.data"));
    EXPECT_FALSE(host::isSupportedDocumentType(""));
}

class DocumentPickingTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        folder = hosttest::container() / "Providers" / "Drive";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "Minutes.pdf", std::ios::binary) << "%PDF minutes";
        std::ofstream(folder / "Photos.zip", std::ios::binary) << "PK";
        uikit::DeviceProfile device = uikit::DeviceProfile::defaultProfile();
        device.documentProviders = {{"Drive", folder.string()}};
        uikit::configureDevice(device);
    }
    void TearDown() override {
        HostTest::TearDown();
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
        std::error_code error;
        std::filesystem::remove_all(folder.parent_path(), error);
        std::filesystem::remove_all(UIDocumentPickerViewController::inboxFolder(), error);
    }
    std::filesystem::path folder;
};

TEST_F(DocumentPickingTest, APdfFromAProviderIsImportedAndSent) {
    auto chat = WAChatSessionViewController::create("Bob", store);
    chat->presentShareDocumentController();
    drain();
    auto* menu = objc::cast<UIDocumentMenuViewController>(chat->presentedViewController());
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(menu->chooseProvider(0));
    drain();

    auto* picker = objc::cast<UIDocumentPickerViewController>(chat->presentedViewController());
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->delegate(), chat.get());
    const auto entries = picker->entries();
    ASSERT_EQ(entries.size(), 1u);  // the archive is not offered
    EXPECT_EQ(entries[0].name, "Minutes.pdf");
    ASSERT_TRUE(picker->pickFileAtIndex(0));
    drain();

    EXPECT_EQ(chat->presentedViewController(), nullptr);
    const auto messages = chat->messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].kind, host::Message::Kind::Document);
    EXPECT_EQ(messages[0].text, "Minutes.pdf");
    // The provider keeps its file; the Inbox copy moved into the chat's media.
    EXPECT_TRUE(std::filesystem::exists(folder / "Minutes.pdf"));
    EXPECT_EQ(std::filesystem::path(messages[0].filePath).parent_path().parent_path(),
              hosttest::container() / "Library" / "Media");
    EXPECT_FALSE(std::filesystem::exists(
        std::filesystem::path(UIDocumentPickerViewController::inboxFolder()) / "Minutes.pdf"));
}

}  // namespace
