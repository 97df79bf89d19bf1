// The uniform type functions as callers see them, against the built-in table
// and this machine's shared MIME-info database.
#include <gtest/gtest.h>

#include <MobileCoreServices/MobileCoreServices.h>

#include <objc/strong.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

// Takes ownership of a Create/Copy result, as callers must (a result that
// were not +1 would be freed twice under the address sanitizer).
std::string take(NSString* owned) {
    const auto held = objc::adopt(owned);
    return held ? held->utf8() : std::string("<nil>");
}

std::vector<std::string> takeAll(NSArray* owned) {
    const auto held = objc::adopt(owned);
    std::vector<std::string> out;
    if (!held) return out;
    for (id element : *held) out.push_back(static_cast<NSString*>(element)->utf8());
    return out;
}

NSString* str(const std::string& s) {
    return objc::autorelease(NSString::create(s).leak());
}

std::string forExtension(const std::string& extension, NSString* conformingTo = nullptr) {
    return take(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, str(extension),
                                                      conformingTo));
}
std::string forMimeType(const std::string& mimeType, NSString* conformingTo = nullptr) {
    return take(
        UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, str(mimeType), conformingTo));
}
std::string extensionOf(const std::string& uti) {
    return take(UTTypeCopyPreferredTagWithClass(str(uti), kUTTagClassFilenameExtension));
}
std::string mimeTypeOf(const std::string& uti) {
    return take(UTTypeCopyPreferredTagWithClass(str(uti), kUTTagClassMIMEType));
}
bool conforms(const std::string& uti, const std::string& other) {
    return UTTypeConformsTo(str(uti), str(other));
}

// A glob that this machine's database has and the table does not, or "".
std::string globsLine(const std::string& glob) {
    std::ifstream in("/usr/share/mime/globs2");
    std::string line;
    while (std::getline(in, line)) {
        if (line.ends_with(":" + glob)) return line;
    }
    return {};
}

TEST(UTTypeLookup, ExtensionsAnswerDeclaredTypesAndTheirMimeTypes) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(forExtension("zip"), "public.zip-archive");
    EXPECT_EQ(mimeTypeOf("public.zip-archive"), "application/zip");
    EXPECT_EQ(forExtension("pdf"), "com.adobe.pdf");
    EXPECT_EQ(forExtension("jpg"), "public.jpeg");
    EXPECT_EQ(forExtension("png"), "public.png");
    EXPECT_EQ(forExtension("txt"), "public.plain-text");
    EXPECT_EQ(forExtension("mp3"), "public.mp3");
    EXPECT_EQ(forExtension("m4a"), "public.mpeg-4-audio");
    EXPECT_EQ(forExtension("mov"), "com.apple.quicktime-movie");
    EXPECT_EQ(forExtension("gz"), "org.gnu.gnu-zip-archive");
    EXPECT_EQ(extensionOf("public.jpeg"), "jpeg");
    EXPECT_EQ(mimeTypeOf("public.jpeg"), "image/jpeg");
    EXPECT_EQ(extensionOf("com.adobe.pdf"), "pdf");
}

TEST(UTTypeLookup, ExtensionsMatchInAnyCaseAndWithoutTheDot) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(forExtension("PDF"), "com.adobe.pdf");
    EXPECT_EQ(forExtension(".pdf"), "com.adobe.pdf");
    EXPECT_EQ(forExtension(".JpEg"), "public.jpeg");
    // An unknown extension in another case is still the same type.
    EXPECT_EQ(forExtension("PVX123"), forExtension("pvx123"));
}

TEST(UTTypeLookup, OfficeFormats) {
    objc::AutoreleasePool pool;
    struct Case {
        const char* extension;
        const char* identifier;
        const char* mimeType;
    };
    const Case cases[] = {
        {"doc", "com.microsoft.word.doc", "application/msword"},
        {"docx", "org.openxmlformats.wordprocessingml.document",
         "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
        {"xls", "com.microsoft.excel.xls", "application/vnd.ms-excel"},
        {"xlsx", "org.openxmlformats.spreadsheetml.sheet",
         "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
        {"ppt", "com.microsoft.powerpoint.ppt", "application/vnd.ms-powerpoint"},
        {"pptx", "org.openxmlformats.presentationml.presentation",
         "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.extension);
        EXPECT_EQ(forExtension(c.extension), c.identifier);
        EXPECT_EQ(mimeTypeOf(c.identifier), c.mimeType);
        EXPECT_EQ(extensionOf(c.identifier), c.extension);
        EXPECT_EQ(forMimeType(c.mimeType), c.identifier);
    }
    EXPECT_TRUE(
        conforms("org.openxmlformats.wordprocessingml.document", "org.openxmlformats.openxml"));
    EXPECT_TRUE(conforms("org.openxmlformats.spreadsheetml.sheet", "public.spreadsheet"));
    EXPECT_TRUE(conforms("org.openxmlformats.presentationml.presentation", "public.presentation"));
    EXPECT_TRUE(conforms("com.microsoft.excel.xls", "public.spreadsheet"));
    EXPECT_TRUE(conforms("com.microsoft.word.doc", "public.composite-content"));
}

TEST(UTTypeLookup, MimeTypesAnswerDeclaredTypes) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(forMimeType("image/png"), "public.png");
    EXPECT_EQ(forMimeType("IMAGE/PNG"), "public.png");
    EXPECT_EQ(forMimeType("text/plain; charset=utf-8"), "public.plain-text");
    EXPECT_EQ(forMimeType("application/pdf"), "com.adobe.pdf");
    EXPECT_EQ(forMimeType("application/zip"), "public.zip-archive");
    EXPECT_EQ(forMimeType("application/octet-stream"), "public.data");
    EXPECT_EQ(extensionOf("public.data"), "<nil>");
}

TEST(UTTypeLookup, ConformingToChoosesAmongCandidates) {
    objc::AutoreleasePool pool;
    // 3gpp files are movies, and the type is declared as one.
    EXPECT_EQ(forExtension("3gp", kUTTypeMovie), "public.3gpp");
    // A constraint the declared type does not meet: a made-up type that
    // meets it and still carries the extension.
    const auto textual = forExtension("png", kUTTypeText);
    EXPECT_TRUE(textual.starts_with("dyn.")) << textual;
    EXPECT_TRUE(conforms(textual, "public.text"));
    EXPECT_TRUE(conforms(textual, "public.data"));
    EXPECT_EQ(extensionOf(textual), "png");
    EXPECT_EQ(forExtension("png", kUTTypeImage), "public.png");
}

TEST(UTTypeLookup, AllIdentifiersAndAllTags) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(takeAll(UTTypeCreateAllIdentifiersForTag(kUTTagClassFilenameExtension, str("pdf"),
                                                       nullptr)),
              std::vector<std::string>{"com.adobe.pdf"});
    const auto extensions =
        takeAll(UTTypeCopyAllTagsWithClass(str("public.jpeg"), kUTTagClassFilenameExtension));
    ASSERT_GE(extensions.size(), 3u);
    EXPECT_EQ(extensions[0], "jpeg");
    EXPECT_EQ(extensions[1], "jpg");
    EXPECT_TRUE(
        takeAll(UTTypeCopyAllTagsWithClass(str("public.folder"), kUTTagClassMIMEType)).empty());
}

TEST(UTTypeDynamic, UnknownExtensionGetsAReversibleDynamicIdentifier) {
    objc::AutoreleasePool pool;
    const auto uti = forExtension("pvx123");
    EXPECT_TRUE(uti.starts_with("dyn.")) << uti;
    EXPECT_EQ(forExtension("pvx123"), uti);  // deterministic
    EXPECT_NE(forExtension("pvx124"), uti);
    EXPECT_EQ(extensionOf(uti), "pvx123");
    EXPECT_EQ(mimeTypeOf(uti), "<nil>");
    EXPECT_TRUE(conforms(uti, "public.data"));
    EXPECT_TRUE(conforms(uti, "public.item"));
    EXPECT_FALSE(conforms(uti, "public.image"));
    EXPECT_TRUE(UTTypeIsDynamic(str(uti)));
    EXPECT_FALSE(UTTypeIsDeclared(str(uti)));
    // Identifiers compare in any case, dynamic ones included.
    std::string upper = uti;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(extensionOf(upper), "pvx123");
    EXPECT_TRUE(UTTypeEqual(str(upper), str(uti)));
}

TEST(UTTypeDynamic, UnknownMimeTypeAndOtherTagClasses) {
    objc::AutoreleasePool pool;
    const auto uti = forMimeType("application/x-parcelvane-test");
    EXPECT_TRUE(uti.starts_with("dyn.")) << uti;
    EXPECT_EQ(mimeTypeOf(uti), "application/x-parcelvane-test");
    EXPECT_TRUE(conforms(uti, "public.data"));

    const auto image = forMimeType("image/x-parcelvane-test");
    EXPECT_TRUE(conforms(image, "public.image"));
    EXPECT_TRUE(conforms(image, "public.content"));

    // Not a file: an OSType says nothing about data.
    const auto osType =
        take(UTTypeCreatePreferredIdentifierForTag(kUTTagClassOSType, str("PVX "), nullptr));
    EXPECT_TRUE(osType.starts_with("dyn.")) << osType;
    EXPECT_EQ(take(UTTypeCopyPreferredTagWithClass(str(osType), kUTTagClassOSType)), "PVX ");
    EXPECT_FALSE(conforms(osType, "public.data"));
    EXPECT_EQ(extensionOf(osType), "<nil>");
}

TEST(UTTypeDynamic, ExtensionOnlyTheMimeDatabaseKnows) {
    objc::AutoreleasePool pool;
    const auto line = globsLine("*.kml");
    if (line.empty()) GTEST_SKIP() << "no shared-mime-info glob for *.kml on this machine";
    const auto mimeType = line.substr(line.find(':') + 1, line.rfind(':') - line.find(':') - 1);
    const auto uti = forExtension("kml");
    EXPECT_TRUE(uti.starts_with("dyn.")) << uti;
    EXPECT_EQ(mimeTypeOf(uti), mimeType);
    EXPECT_EQ(extensionOf(uti), "kml");
    // Both sides of the database's pair name the same type.
    EXPECT_EQ(forMimeType(mimeType), uti);
    // KML is XML to the database, so it is XML and text here.
    EXPECT_TRUE(conforms(uti, "public.xml"));
    EXPECT_TRUE(conforms(uti, "public.text"));
    EXPECT_TRUE(conforms(uti, "public.data"));
    EXPECT_EQ(take(UTTypeCopyDescription(str(uti))), "KML file");
}

TEST(UTTypeDynamic, DatabaseMimeTypesLeadToDeclaredTypes) {
    objc::AutoreleasePool pool;
    if (globsLine("*.ora").empty()) GTEST_SKIP() << "no shared-mime-info glob for *.ora";
    // OpenRaster: an image/ type the database declares a zip file.
    const auto ora = forExtension("ora");
    EXPECT_EQ(mimeTypeOf(ora), "image/openraster");
    EXPECT_TRUE(conforms(ora, "public.image"));
    EXPECT_TRUE(conforms(ora, "public.zip-archive"));
    EXPECT_FALSE(conforms(ora, "public.text"));
    // An extension the table lacks whose MIME type the table declares.
    if (!globsLine("image/jpeg:*.jpe").empty() || !globsLine("*.jpe").empty()) {
        EXPECT_EQ(forExtension("jpe"), "public.jpeg");
    }
}

TEST(UTTypeConformance, TransitiveOverTheGraph) {
    objc::AutoreleasePool pool;
    EXPECT_TRUE(conforms("public.jpeg", "public.jpeg"));
    EXPECT_TRUE(conforms("public.jpeg", "public.image"));
    EXPECT_TRUE(conforms("public.jpeg", "public.data"));
    EXPECT_TRUE(conforms("public.jpeg", "public.item"));
    EXPECT_TRUE(conforms("public.jpeg", "public.content"));
    EXPECT_TRUE(conforms("PUBLIC.JPEG", "Public.Image"));
    EXPECT_FALSE(conforms("public.image", "public.jpeg"));
    EXPECT_FALSE(conforms("public.zip-archive", "public.image"));
    EXPECT_TRUE(conforms("public.zip-archive", "public.archive"));
    EXPECT_TRUE(conforms("public.plain-text", "public.text"));
    EXPECT_TRUE(conforms("public.plain-text", "public.content"));
    EXPECT_TRUE(conforms("com.adobe.pdf", "public.composite-content"));
    EXPECT_TRUE(conforms("com.adobe.pdf", "public.content"));
    EXPECT_FALSE(conforms("com.adobe.pdf", "public.text"));
    EXPECT_TRUE(conforms("org.openxmlformats.wordprocessingml.document", "public.zip-archive"));
    EXPECT_TRUE(conforms("public.mpeg-4-audio", "public.audio"));
    EXPECT_TRUE(conforms("public.folder", "public.item"));
    EXPECT_FALSE(conforms("public.folder", "public.data"));
    EXPECT_FALSE(conforms("com.example.undeclared", "public.data"));
    EXPECT_TRUE(conforms("com.example.undeclared", "com.example.undeclared"));
}

TEST(UTTypeConformance, ConstantsNameDeclaredTypes) {
    objc::AutoreleasePool pool;
    NSString* const constants[] = {
        kUTTypeItem,        kUTTypeContent,       kUTTypeData,       kUTTypeText,
        kUTTypePlainText,   kUTTypeUTF8PlainText, kUTTypeRTF,        kUTTypeHTML,
        kUTTypeXML,         kUTTypePDF,           kUTTypeZipArchive, kUTTypeGNUZipArchive,
        kUTTypeArchive,     kUTTypeImage,         kUTTypeJPEG,       kUTTypePNG,
        kUTTypeGIF,         kUTTypeAudio,         kUTTypeMP3,        kUTTypeMPEG4Audio,
        kUTTypeMovie,       kUTTypeVideo,         kUTTypeMPEG4,      kUTTypeQuickTimeMovie,
        kUTTypeSpreadsheet, kUTTypePresentation,  kUTTypeDirectory,  kUTTypeFolder,
        kUTTypeJSON,        kUTTypeVCard,         kUTTypeTIFF,       kUTTypeBMP,
        kUTTypeJavaScript,  kUTTypeBzip2Archive,  kUTTypeFont,
    };
    for (NSString* c : constants) {
        EXPECT_TRUE(UTTypeIsDeclared(c)) << c->utf8();
        EXPECT_FALSE(UTTypeIsDynamic(c)) << c->utf8();
    }
    EXPECT_EQ(kUTTypeZipArchive->utf8(), "public.zip-archive");
    EXPECT_EQ(kUTTypeGIF->utf8(), "com.compuserve.gif");
    EXPECT_EQ(kUTTagClassFilenameExtension->utf8(), "public.filename-extension");
    EXPECT_EQ(kUTTagClassMIMEType->utf8(), "public.mime-type");
    EXPECT_TRUE(UTTypeConformsTo(kUTTypeJPEG, kUTTypeImage));
    EXPECT_TRUE(UTTypeEqual(kUTTypePDF, str("COM.ADOBE.PDF")));
    EXPECT_FALSE(UTTypeEqual(kUTTypePDF, kUTTypeData));
    EXPECT_EQ(take(UTTypeCopyDescription(kUTTypeJPEG)), "JPEG image");
    EXPECT_EQ(take(UTTypeCopyDescription(str("com.example.undeclared"))), "<nil>");
}

TEST(UTTypeErrors, NilAndMalformedInputAnswerNothing) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(UTTypeCreatePreferredIdentifierForTag(nullptr, str("pdf"), nullptr), nullptr);
    EXPECT_EQ(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(UTTypeCreateAllIdentifiersForTag(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(UTTypeCopyPreferredTagWithClass(nullptr, kUTTagClassMIMEType), nullptr);
    EXPECT_EQ(UTTypeCopyPreferredTagWithClass(kUTTypePDF, nullptr), nullptr);
    EXPECT_EQ(UTTypeCopyAllTagsWithClass(nullptr, nullptr), nullptr);
    EXPECT_FALSE(UTTypeConformsTo(nullptr, kUTTypeData));
    EXPECT_FALSE(UTTypeConformsTo(kUTTypeData, nullptr));
    EXPECT_FALSE(UTTypeEqual(nullptr, nullptr));
    EXPECT_EQ(UTTypeCopyDescription(nullptr), nullptr);
    // Text after "dyn." that no lookup could have made is no type at all.
    for (const char* bogus : {"dyn.", "dyn.!!!!", "dyn.a", "dyn.mfrggzdf"}) {
        SCOPED_TRACE(bogus);
        EXPECT_FALSE(UTTypeIsDynamic(str(bogus)));
        EXPECT_FALSE(conforms(bogus, "public.data"));
        EXPECT_EQ(extensionOf(bogus), "<nil>");
    }
    // A tag class that cannot be carried in an identifier.
    EXPECT_EQ(UTTypeCreatePreferredIdentifierForTag(str("bad=class"), str("x"), nullptr), nullptr);
}

TEST(UTTypeThreads, FirstUseFromManyThreadsAtOnce) {
    // Each test runs in its own process under ctest, so this is the load.
    constexpr int kThreads = 8;
    std::atomic<int> waiting{kThreads};
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            objc::AutoreleasePool pool;
            waiting.fetch_sub(1);
            while (waiting.load() > 0) std::this_thread::yield();
            for (int i = 0; i < 50; ++i) {
                const bool ok = forExtension(t % 2 ? "zip" : "PNG") ==
                                    (t % 2 ? "public.zip-archive" : "public.png") &&
                                conforms("public.jpeg", "public.data") &&
                                extensionOf(forExtension("pvx123")) == "pvx123" &&
                                forMimeType("image/png") == "public.png";
                if (!ok) failures.fetch_add(1);
            }
        });
    }
    for (auto& t : threads) t.join();
    EXPECT_EQ(failures.load(), 0);
}

}  // namespace
