// The registry over a small table and a made-up MIME database, and dynamic identifiers' text.
#include <gtest/gtest.h>

#include "dynamic_identifier.h"
#include "shared_mime_database.h"
#include "type_registry.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include "scratch_folder.h"

namespace mobilecoreservices {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExt = kFilenameExtensionTagClass;
constexpr std::string_view kMime = kMimeTypeTagClass;

constexpr CoreTypeEntry kSmallTable[] = {
    {"public.item", "", "", "", "item"},
    {"public.content", "", "", "", "content"},
    {"public.data", "public.item", "", "application/octet-stream", "data"},
    {"public.text", "public.data public.content", "", "", "text"},
    {"public.plain-text", "public.text", "txt", "text/plain", "plain text"},
    {"public.xml", "public.text", "xml", "application/xml", "XML"},
    {"public.image", "public.data public.content", "", "", "image"},
    {"public.jpeg", "public.image", "jpeg jpg", "image/jpeg", "JPEG image"},
    {"public.archive", "public.data", "", "", "archive"},
    {"public.zip-archive", "public.data public.archive", "zip", "application/zip", "ZIP"},
    // Two declared types share an extension: the first is preferred.
    {"com.example.shared-movie", "public.data", "shr", "", "movie"},
    {"com.example.shared-text", "public.text", "shr", "", "text"},
    {"com.example.loop-a", "com.example.loop-b", "", "", "a"},
    {"com.example.loop-b", "com.example.loop-a public.data", "", "", "b"},
    {"public.jpeg", "public.text", "dup", "", "ignored second declaration"},
};

// The made-up database, written once per test.
fs::path writeDatabase(const testsupport::ScratchFolder& scratch) {
    const fs::path dir = scratch.path();
    std::ofstream(dir / "globs2") << "50:image/jpeg:*.jpe\n"
                                     "50:application/vnd.example.kml+xml:*.kml\n"
                                     "50:image/x-layered:*.ora\n"
                                     "50:text/x-notes:*.notes\n"
                                     "50:application/x-deep:*.deep\n";
    std::ofstream(dir / "subclasses") << "application/vnd.example.kml+xml application/xml\n"
                                         "image/x-layered application/zip\n"
                                         "application/x-deep application/x-middle\n"
                                         "application/x-middle application/x-zip\n";
    std::ofstream(dir / "aliases") << "application/x-zip application/zip\n";
    return dir;
}

std::string preferred(const TypeRegistry& r, std::string_view tagClass, std::string_view tag,
                      std::string_view conformingTo = {}) {
    const auto ids = r.identifiersForTag(tagClass, tag, conformingTo);
    return ids.empty() ? "<none>" : ids.front();
}

class RegistryTest : public ::testing::Test {
  protected:
    const testsupport::ScratchFolder scratch_{"pv-registry"};
    const fs::path dir_ = writeDatabase(scratch_);
    const TypeRegistry r{kSmallTable, SharedMimeDatabase::load({dir_})};
};

TEST_F(RegistryTest, DeclaredTypesByTagPreferenceAndConformance) {
    EXPECT_EQ(r.identifiersForTag(kExt, "shr", {}),
              (std::vector<std::string>{"com.example.shared-movie", "com.example.shared-text"}));
    EXPECT_EQ(preferred(r, kExt, "SHR", "public.text"), "com.example.shared-text");
    EXPECT_EQ(preferred(r, kMime, "Application/XML ; charset=x", {}), "public.xml");
    // Through the database's alias.
    EXPECT_EQ(preferred(r, kMime, "application/x-zip"), "public.zip-archive");
    // Through the database's MIME type for an extension the table lacks.
    EXPECT_EQ(preferred(r, kExt, "jpe"), "public.jpeg");
    // The first declaration of an identifier stands.
    EXPECT_EQ(r.declaration("public.jpeg")->description, "JPEG image");
    EXPECT_TRUE(r.identifiersForTag(kExt, "dup", {}).front().starts_with("dyn."));
    EXPECT_EQ(r.tagsWithClass("public.jpeg", kExt),
              (std::vector<std::string>{"jpeg", "jpg", "jpe"}));
    // Conformance through the graph; a cycle must not hang it.
    EXPECT_TRUE(r.conformsTo("public.jpeg", "public.item"));
    EXPECT_FALSE(r.conformsTo("public.image", "public.jpeg"));
    EXPECT_TRUE(r.conformsTo("com.example.loop-a", "com.example.loop-b"));
    EXPECT_TRUE(r.conformsTo("com.example.loop-a", "public.item"));
    EXPECT_FALSE(r.conformsTo("com.example.loop-a", "public.image"));
    EXPECT_FALSE(r.conformsTo("", ""));
}

TEST_F(RegistryTest, DatabaseTypesInheritDeclaredConformance) {
    const auto kml = preferred(r, kExt, "kml");
    ASSERT_TRUE(kml.starts_with("dyn.")) << kml;
    EXPECT_EQ(r.tagsWithClass(kml, kMime).at(0), "application/vnd.example.kml+xml");
    EXPECT_EQ(preferred(r, kMime, "application/vnd.example.kml+xml"), kml);
    EXPECT_TRUE(r.conformsTo(kml, "public.xml"));
    EXPECT_FALSE(r.conformsTo(kml, "public.image"));

    // image/ at the top and a zip underneath: both.
    const auto ora = preferred(r, kExt, "ora");
    EXPECT_TRUE(r.conformsTo(ora, "public.image"));
    EXPECT_TRUE(r.conformsTo(ora, "public.zip-archive"));
    // Several subclass links up, through an alias, to a declared type.
    EXPECT_TRUE(r.conformsTo(preferred(r, kExt, "deep"), "public.archive"));
    // text/ types are plain text even without a listed parent.
    EXPECT_TRUE(r.conformsTo(preferred(r, kExt, "notes"), "public.plain-text"));
    // A dynamic identifier made to conform to something says so.
    const auto forced = preferred(r, kExt, "kml", "public.image");
    EXPECT_NE(forced, kml);
    EXPECT_TRUE(r.conformsTo(forced, "public.image"));
    // No extra conformance needed: the plain identifier stands.
    EXPECT_EQ(preferred(r, kExt, "kml", "public.text"), kml);
}

TEST_F(RegistryTest, WithoutADatabaseTheTableStillAnswers) {
    const TypeRegistry bare(kSmallTable, SharedMimeDatabase::load({dir_ / "absent"}));
    const auto kml = preferred(bare, kExt, "kml");
    EXPECT_TRUE(kml.starts_with("dyn."));
    EXPECT_TRUE(bare.tagsWithClass(kml, kMime).empty());
    EXPECT_TRUE(bare.conformsTo(kml, "public.data"));
    EXPECT_FALSE(bare.conformsTo(kml, "public.xml"));
}

TEST(CoreTypeTable, EveryFileTypeIsDataAndEveryParentIsDeclared) {
    const TypeRegistry core(coreTypeTable(), SharedMimeDatabase{});
    for (const auto& entry : coreTypeTable()) {
        SCOPED_TRACE(entry.identifier);
        const auto* d = core.declaration(entry.identifier);
        ASSERT_NE(d, nullptr);
        for (const auto& parent : d->conformsTo)
            EXPECT_NE(core.declaration(parent), nullptr) << parent;
        if (!d->extensions.empty() || !d->mimeTypes.empty()) {
            EXPECT_TRUE(core.conformsTo(d->identifier, "public.data"));
        }
        // Each tag leads back to a type (the preferred one need not be this).
        for (const auto& e : d->extensions) {
            EXPECT_FALSE(core.identifiersForTag(kExt, e, {}).front().starts_with("dyn.")) << e;
            EXPECT_EQ(e, asciiLower(e));
        }
    }
}

TEST(DynamicIdentifierText, RoundTripsAnyTagsAndRejectsOtherText) {
    DynamicIdentifier d;
    d.conformsTo = {"public.image"};
    d.tags = {{std::string(kExt), "tar.gz"},
              {std::string(kMime), "application/x-a=b; q=\"1\""},
              {"com.example.tag-class", "日本語 tag"}};
    const auto text = d.encode();
    ASSERT_TRUE(text.starts_with("dyn."));
    for (const char c : text.substr(4)) {
        EXPECT_TRUE((c >= 'a' && c <= 'z') || (c >= '2' && c <= '7')) << c;
    }
    EXPECT_EQ(DynamicIdentifier::decode(text), d);
    std::string upper = text;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(DynamicIdentifier::decode(upper), d);
    EXPECT_EQ(d.tagsWithClass("COM.EXAMPLE.TAG-CLASS"),
              std::vector<std::string_view>{"日本語 tag"});

    // Rejects what encode() cannot make.
    DynamicIdentifier other;
    other.tags = {{std::string(kExt), "ab"}};
    const auto good = other.encode();
    ASSERT_TRUE(DynamicIdentifier::decode(good));
    for (const std::string& bad :
         {std::string("public.jpeg"), std::string("dyn."), std::string("dyn.0"), good + "a",
          good.substr(0, good.size() - 1), std::string("dyn.mfrggzdf") /* "abcde": no '=' */}) {
        EXPECT_FALSE(DynamicIdentifier::decode(bad)) << bad;
    }
    // Trailing bits that are not zero would give a second spelling.
    std::string respelled = good;
    respelled.back() = respelled.back() == 'a' ? 'b' : 'a';
    EXPECT_NE(DynamicIdentifier::decode(respelled), std::optional<DynamicIdentifier>(other));
}

}  // namespace
}  // namespace mobilecoreservices
