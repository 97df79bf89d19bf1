// The uniform type functions as callers see them, against the built-in table.
#include <gtest/gtest.h>

#include <MobileCoreServices/MobileCoreServices.h>

#include <objc/strong.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

// Owns a Create/Copy result, as callers must (a result that were not +1 would be freed twice).
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

TEST(UTTypeLookup, ExtensionTypeAndMimeTypeBothWays) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(forExtension("zip"), "public.zip-archive");
    EXPECT_EQ(mimeTypeOf("public.zip-archive"), "application/zip");
    EXPECT_EQ(forMimeType("application/zip"), "public.zip-archive");
    EXPECT_EQ(forExtension("PDF"), "com.adobe.pdf");
    EXPECT_EQ(forExtension(".JpEg"), "public.jpeg");
    EXPECT_EQ(forExtension("3gp", kUTTypeMovie), "public.3gpp");  // a constraint it meets
    EXPECT_EQ(extensionOf("public.jpeg"), "jpeg");
    EXPECT_EQ(mimeTypeOf("public.jpeg"), "image/jpeg");
    EXPECT_EQ(forMimeType("IMAGE/PNG"), "public.png");
    EXPECT_EQ(forMimeType("text/plain; charset=utf-8"), "public.plain-text");
    EXPECT_EQ(forMimeType("application/octet-stream"), "public.data");
    EXPECT_EQ(extensionOf("public.data"), "<nil>");
    const auto extensions =
        takeAll(UTTypeCopyAllTagsWithClass(str("public.jpeg"), kUTTagClassFilenameExtension));
    ASSERT_GE(extensions.size(), 2u);
    EXPECT_EQ(extensions[1], "jpg");
}

TEST(UTTypeConformance, TransitiveOverTheGraph) {
    objc::AutoreleasePool pool;
    EXPECT_TRUE(conforms("public.jpeg", "public.data"));
    EXPECT_TRUE(conforms("PUBLIC.JPEG", "Public.Image"));
    EXPECT_FALSE(conforms("public.image", "public.jpeg"));
    EXPECT_FALSE(conforms("public.zip-archive", "public.image"));
    EXPECT_TRUE(conforms("com.adobe.pdf", "public.composite-content"));
    EXPECT_FALSE(conforms("com.adobe.pdf", "public.text"));
    EXPECT_TRUE(conforms("public.folder", "public.item"));
    EXPECT_FALSE(conforms("public.folder", "public.data"));
    EXPECT_FALSE(conforms("com.example.undeclared", "public.data"));
    EXPECT_TRUE(conforms("com.example.undeclared", "com.example.undeclared"));
}

TEST(UTTypeErrors, NilAndMalformedInputAnswerNothing) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(UTTypeCreatePreferredIdentifierForTag(nullptr, str("pdf"), nullptr), nullptr);
    EXPECT_EQ(UTTypeCreatePreferredIdentifierForTag(kUTTagClassMIMEType, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(UTTypeCopyPreferredTagWithClass(kUTTypePDF, nullptr), nullptr);
    EXPECT_EQ(UTTypeCopyAllTagsWithClass(nullptr, nullptr), nullptr);
    EXPECT_FALSE(UTTypeConformsTo(nullptr, kUTTypeData));
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
