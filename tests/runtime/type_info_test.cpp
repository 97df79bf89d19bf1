// Run-time parsing of type encodings, and the libffi descriptions built from them.
#include <objc/encoding.h>
#include <objc/geometry.h>
#include <objc/type_info.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using objc::EncodingError;
using objc::TypeInfo;
using Kind = objc::TypeInfo::Kind;

TypeInfo parse(std::string_view text) {
    std::string_view cursor = text;
    TypeInfo info = objc::parseType(cursor);
    EXPECT_TRUE(cursor.empty()) << text << " left " << cursor;
    return info;
}

struct Layout {
    const char* encoding;
    std::size_t size;
    std::size_t alignment;
    Kind kind;
};

// Sizes and alignments agree with the compiler's.
TEST(TypeInfoTest, SizesAndAlignments) {
    const Layout cases[] = {
        {"c", 1, 1, Kind::Char},
        {"i", 4, 4, Kind::Int},
        {"l", 4, 4, Kind::Long},
        {"q", 8, 8, Kind::LongLong},
        {"d", 8, 8, Kind::Double},
        {"D", sizeof(long double), alignof(long double), Kind::LongDouble},
        {"v", 0, 1, Kind::Void},
        {"@", 8, 8, Kind::Object},
        {"@?", 8, 8, Kind::Block},
        {"^v", 8, 8, Kind::Pointer},
        {"{CGRect={CGPoint=dd}{CGSize=dd}}", 32, 8, Kind::Struct},
        {objc::encodingOf<NSRange>(), sizeof(NSRange), alignof(NSRange), Kind::Struct},
        {objc::encodingOf<CGPoint[3]>(), sizeof(CGPoint[3]), alignof(CGPoint), Kind::Array},
        {"{X=ci}", 8, 4, Kind::Struct},
        {"{X=cD}", 32, 16, Kind::Struct},
        {"{A=c{B=d}}", 16, 8, Kind::Struct},
        {"{Empty=}", 0, 1, Kind::Struct},
        {"[4s]", 8, 2, Kind::Array},
        {"[0i]", 0, 4, Kind::Array},
        {"{Y=c[3s]}", 8, 2, Kind::Struct},
        {"(U=id)", 8, 8, Kind::Union},
        {"(U=c[5c])", 5, 1, Kind::Union},
        {"b3", 1, 1, Kind::Bitfield},
        {"{F=b3b13i}", 8, 4, Kind::Struct}};
    for (const Layout& c : cases) {
        const TypeInfo t = parse(c.encoding);
        EXPECT_EQ(t.size, c.size) << c.encoding;
        EXPECT_EQ(t.alignment, c.alignment) << c.encoding;
        EXPECT_EQ(t.kind, c.kind) << c.encoding;
        EXPECT_EQ(t.encoding, c.encoding);
    }
}

TEST(TypeInfoTest, MethodEncodingsAndOffsets) {
    const auto types = objc::parseMethodEncoding("v24@0:8@16");
    ASSERT_EQ(types.size(), 4u);
    const Kind kinds[] = {Kind::Void, Kind::Object, Kind::Selector, Kind::Object};
    const long offsets[] = {24, 0, 8, 16};
    for (std::size_t i = 0; i < types.size(); ++i) {
        EXPECT_EQ(types[i].kind, kinds[i]);
        EXPECT_EQ(types[i].offset, offsets[i]);
    }

    const auto plain = objc::parseMethodEncoding(objc::methodEncoding<CGRect, NSRange, SEL>());
    ASSERT_EQ(plain.size(), 5u);
    EXPECT_EQ(plain[3].name, "_NSRange");
    EXPECT_FALSE(plain[0].offset.has_value());

    EXPECT_EQ(objc::parseMethodEncoding("Vv-8@0").at(0).offset, -8);

    // parseType consumes one type and its offset, and nothing on failure.
    std::string_view cursor = "{A=ci}12^v8";
    const TypeInfo first = objc::parseType(cursor);
    EXPECT_EQ(first.encoding, "{A=ci}");
    EXPECT_EQ(first.offset, 12);
    EXPECT_EQ(cursor, "^v8");

    std::string_view bad = "{A=i";
    EXPECT_THROW(objc::parseType(bad), EncodingError);
    EXPECT_EQ(bad, "{A=i");
}

TEST(TypeInfoTest, SizeAndAlignmentFunction) {
    NSUInteger size = 0;
    NSUInteger alignment = 0;
    EXPECT_STREQ(NSGetSizeAndAlignment("{CGPoint=dd}16@0:8", &size, &alignment), "@0:8");
    EXPECT_EQ(size, 16u);
    EXPECT_EQ(alignment, 8u);
    EXPECT_THROW(objc::getSizeAndAlignment("{A=", &size, nullptr), EncodingError);
    // The C entry reports a malformed encoding without throwing.
    EXPECT_EQ(NSGetSizeAndAlignment("{A=", &size, &alignment), nullptr);
    EXPECT_EQ(size + alignment, 0u);
}

TEST(TypeInfoTest, MalformedEncodingsThrow) {
    std::vector<std::string> bad = {"",     "{",     "{A=i", "[",   "[x]",     "[4]",     "[4i",
                                    "[4i}", "Z",     "^",    "r",   "{A}",     "(U)",     "{A=v}",
                                    "[3v]", "{A=i)", "b",    "b65", "{A={B}}", "{A{B=i}}"};
    // Huge counts and deep nesting fail cleanly rather than overflow.
    std::string deepStruct = "i";
    for (int i = 0; i < 100; ++i) deepStruct = "{A=" + deepStruct + "}";
    bad.insert(bad.end(), {"[99999999999999999999999i]", "[1099511627776[1099511627776c]]",
                           std::string(100, '{'), deepStruct, std::string(100, '^') + "i",
                           std::string(100, '[') + "1i"});
    for (const std::string& text : bad) {
        EXPECT_THROW(objc::parseMethodEncoding(text), EncodingError) << text;
        std::string_view cursor = text;
        EXPECT_THROW(objc::parseType(cursor), EncodingError) << text;
    }
    // A valid first type followed by garbage fails only as a whole.
    for (const std::string& text :
         {std::string("@\""), std::string("i\0", 2), std::string("i99999999999999999999999")}) {
        EXPECT_THROW(objc::parseMethodEncoding(text), EncodingError) << text;
    }
    try {
        (void)objc::parseMethodEncoding("v@:{A=i");
        FAIL();
    } catch (const std::invalid_argument& e) {
        EXPECT_NE(std::string(e.what()).find("\"v@:{A=i\""), std::string::npos) << e.what();
        EXPECT_NE(std::string(e.what()).find("unterminated struct"), std::string::npos);
    }
}

// The libffi description agrees with the parsed layout, also when libffi lays it out itself.
TEST(TypeInfoFfiTest, LayoutMatchesParsedLayout) {
    for (const char* text :
         {"{CGRect={CGPoint=dd}{CGSize=dd}}", "{X=ci}", "{X=cD}", "[4s]", "{Y=c[3s]q}", "(U=id)",
          "(U=c[5c])", "{Z=(U=f{P=cs})c}", "{F=b3b13i}", "b12", "{E={Empty=}i}", "{N=[2[3f]]}"}) {
        const TypeInfo t = parse(text);
        ffi_type* type = t.ffiType();
        ASSERT_EQ(type->type, FFI_TYPE_STRUCT) << text;
        EXPECT_EQ(type->size, t.size) << text;
        EXPECT_EQ(type->alignment, t.alignment) << text;

        ffi_type fresh{};
        fresh.type = FFI_TYPE_STRUCT;
        fresh.elements = type->elements;
        ffi_type* args[] = {type, &fresh};
        ffi_cif cif;
        ASSERT_EQ(ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 2, type, args), FFI_OK) << text;
        EXPECT_EQ(fresh.size, t.size) << text;
        EXPECT_EQ(fresh.alignment, t.alignment) << text;
    }
    EXPECT_EQ(parse("v").ffiType(), &ffi_type_void);
    EXPECT_EQ(parse("{Empty=}").ffiType(), &ffi_type_void);
    EXPECT_EQ(parse("B").ffiType(), &ffi_type_uint8);
    EXPECT_EQ(parse("D").ffiType(), &ffi_type_longdouble);
    EXPECT_EQ(parse("@?").ffiType(), &ffi_type_pointer);
    EXPECT_THROW(parse("[100000c]").ffiType(), EncodingError);
    // A zero-length array pads (16) but gives libffi no element (2): refused, not misplaced.
    EXPECT_EQ(parse("{=c[0d]c}").size, 16u);
    EXPECT_THROW(parse("{=c[0d]c}").ffiType(), EncodingError);
    EXPECT_THROW(parse("{=c[0d]}").ffiType(), EncodingError);
}

CGRect offsetRect(CGRect r, CGPoint by, char scale) {
    return CGRectMake(r.origin.x + by.x, r.origin.y + by.y, r.size.width * scale,
                      r.size.height * scale);
}

TEST(TypeInfoFfiTest, CallsThroughParsedTypes) {
    // The descriptions outlive the TypeInfo values they came from.
    const std::vector<TypeInfo> types = [] {
        const std::string rect = objc::encodingOf<CGRect>();
        const auto parsed =
            objc::parseMethodEncoding(rect + rect + objc::encodingOf<CGPoint>() + "c");
        return std::vector<TypeInfo>(parsed.begin(), parsed.end());
    }();
    ASSERT_EQ(types.size(), 4u);
    ffi_type* args[] = {types[1].ffiType(), types[2].ffiType(), types[3].ffiType()};
    ffi_cif cif;
    ASSERT_EQ(ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 3, types[0].ffiType(), args), FFI_OK);

    CGRect rect = CGRectMake(1, 2, 3, 4);
    CGPoint by = CGPointMake(10, 20);
    char scale = 2;
    void* values[] = {&rect, &by, &scale};
    CGRect result{};
    ffi_call(&cif, FFI_FN(&offsetRect), &result, values);
    EXPECT_EQ(result, CGRectMake(11, 22, 6, 8));
}

TEST(TypeInfoCacheTest, SharedAcrossThreads) {
    EXPECT_THROW(objc::parseMethodEncodingCached("v@:{"), EncodingError);

    std::vector<std::thread> threads;
    std::vector<std::shared_ptr<const std::vector<TypeInfo>>> seen(8);
    std::vector<std::size_t> sizes(8);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        threads.emplace_back([i, &seen, &sizes] {
            for (int round = 0; round < 200; ++round) {
                seen[i] =
                    objc::parseMethodEncodingCached("{T=q[3f]}@:" + std::to_string(round % 7));
                sizes[i] = seen[i]->front().ffiType()->size;
            }
        });
    }
    for (std::thread& t : threads) t.join();
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], seen[0]);
        EXPECT_EQ(sizes[i], 24u);
    }
}

}  // namespace
