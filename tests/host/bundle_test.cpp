#include "host_fixture.h"

#include <Host/document_types.h>
#include <Host/host_strings.h>

#include <Foundation/strings_table.h>

#include <algorithm>
#include <sstream>

namespace {

using testsupport::HostTest;
using BundleTest = HostTest;

foundation::StringsTable table(const std::string& language) {
    std::ifstream in(std::string(HOST_BUNDLE_DIR) + "/" + language + ".lproj/Localizable.strings",
                     std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    auto parsed = foundation::parseStringsTable(bytes.str());
    EXPECT_TRUE(parsed.ok()) << language;
    return parsed ? std::move(*parsed) : foundation::StringsTable{};
}

std::string text(const foundation::StringsTable& t, const char* key) {
    const auto it = t.find(objc::utf8ToUtf16(key));
    return it == t.end() ? std::string() : objc::utf16ToUtf8(it->second);
}

TEST_F(BundleTest, EveryLanguageTranslatesEveryText) {
    const auto en = table("en"), fr = table("fr"), ar = table("ar");
    ASSERT_FALSE(en.empty());
    for (const auto* other : {&fr, &ar}) {
        EXPECT_EQ(other->size(), en.size());
        for (const auto& [key, value] : en) EXPECT_EQ(other->count(key), 1u);
    }
    EXPECT_EQ(text(en, "Share Document"), "Share Document");
    EXPECT_EQ(text(fr, "Share Document"), "Partager un document");
    EXPECT_EQ(text(ar, "Share Document"), "مشاركة مستند");
    EXPECT_EQ(host::localized(NSSTR("Share Document"))->utf8(), "Share Document");
    EXPECT_EQ(host::localized(NSSTR("No such text"))->utf8(), "No such text");
    for (const char* key : {"Take Photo or Video", "Photo & Video Library", "Share Location",
                            "Share Contact", "Cancel"}) {
        EXPECT_FALSE(text(fr, key).empty()) << key;
        EXPECT_NE(text(ar, key), key);
    }
}

// The host accepts by conformance: a zip archive is what office formats are made of, not one.
TEST_F(BundleTest, DocumentTypesByExtensionAndConformance) {
    EXPECT_EQ(host::shareDocumentTypes().size(), 7u);
    EXPECT_EQ(host::documentTypeForExtension("DocX"),
              "org.openxmlformats.wordprocessingml.document");
    for (const char* ext : {"pdf", "PDF", "doc", "docx", "xls", "xlsx", "ppt", "pptx"}) {
        const std::string type = host::documentTypeForExtension(ext);
        const auto& all = host::shareDocumentTypes();
        EXPECT_NE(std::find(all.begin(), all.end(), type), all.end()) << ext;
        EXPECT_TRUE(host::isSupportedDocumentExtension(ext)) << ext;
    }
    for (const char* ext : {"", "txt", "zip", "pdfx", ".pdf", "unknownext"}) {
        EXPECT_FALSE(host::isSupportedDocumentExtension(ext)) << ext;
    }
    EXPECT_TRUE(host::isSupportedDocumentType("COM.ADOBE.PDF"));
    EXPECT_FALSE(host::isSupportedDocumentType("public.zip-archive"));
    EXPECT_FALSE(host::isSupportedDocumentType("public.data"));
}

}  // namespace
