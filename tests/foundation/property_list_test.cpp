// Property lists: XML and binary, kinds preserved, errors reported, the collections' file methods.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSPropertyListSerialization.h>

#include <cmath>
#include <limits>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using PropertyList = testsupport::PoolTest;

using namespace testsupport;

// A list of every kind: nested containers, extreme numbers, non-ASCII text, zero bytes, dates.
objc::Strong<NSDictionary> sampleList() {
    const std::uint8_t bytes[] = {0, 1, 2, 0xFF, 0, 42};
    auto inner = NSDictionary::create(
        {{S("empty array"), NSArray::create({}).get()},
         {S("empty dict"), NSDictionary::create({}).get()},
         {S("deep"), NSArray::create({NSArray::create({S("x")}).get()}).get()}});
    return NSDictionary::create({
        {S("text"), S("héllo <&> \"world\" 😀")},
        {S("yes"), NSNumber::create(true).get()},
        {S("no"), NSNumber::create(false).get()},
        {S("one"), NSNumber::create(1).get()},
        {S("big"), NSNumber::create(std::numeric_limits<long long>::max()).get()},
        {S("real"), NSNumber::create(0.1 + 0.2).get()},
        {S("whole real"), NSNumber::create(3.0).get()},
        {S("data"), NSData::create(std::span<const std::uint8_t>(bytes)).get()},
        {S("date"), NSDate::create(123456789.0).get()},
        {S("list"), NSArray::create({S("a"), NSNumber::create(2).get(), inner.get()}).get()},
        {S("inner"), inner.get()},
    });
}

id roundTrip(id plist, NSPropertyListFormat format,
             NSPropertyListReadOptions options = NSPropertyListImmutable) {
    NSError* error = nullptr;
    NSData* data = NSPropertyListSerialization::dataWithPropertyList(plist, format, {}, &error);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(error, nullptr);
    NSPropertyListFormat read{};
    id back = NSPropertyListSerialization::propertyListWithData(data, options, &read, &error);
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(read, format);
    return back;
}

NSNumber* numberAt(id dictionary, const char* key) {
    return objc::cast<NSNumber>(static_cast<NSDictionary*>(dictionary)->objectForKey(S(key)));
}

class PropertyListFormats : public ::testing::TestWithParam<NSPropertyListFormat> {};

TEST_P(PropertyListFormats, RoundTripKeepsValuesAndKinds) {
    objc::AutoreleasePool pool;
    const auto list = sampleList();
    id back = roundTrip(list, GetParam());
    ASSERT_NE(objc::cast<NSDictionary>(back), nullptr);
    EXPECT_TRUE(list->isEqual(back)) << static_cast<NSObject*>(back)->description()->utf8();
    // Numeric equality is across kinds, so check the kinds themselves.
    EXPECT_TRUE(numberAt(back, "yes")->isBoolean());
    EXPECT_TRUE(numberAt(back, "no")->isBoolean());
    EXPECT_EQ(numberAt(back, "one")->kind(), NSNumber::Kind::Signed);
    EXPECT_EQ(numberAt(back, "big")->longLongValue(), std::numeric_limits<long long>::max());
    EXPECT_TRUE(numberAt(back, "whole real")->isFloatingPoint());
    EXPECT_EQ(numberAt(back, "real")->doubleValue(), 0.1 + 0.2);  // exact, not rounded
    EXPECT_TRUE(objc::isKindOf(static_cast<NSDictionary*>(back)->objectForKey(S("data")),
                               NSData::objcClass()));
    // Top-level values need not be containers.
    EXPECT_TRUE(S("just text")->isEqual(roundTrip(S("just text"), GetParam())));
    EXPECT_TRUE(NSNumber::create(7)->isEqual(roundTrip(NSNumber::create(7), GetParam())));
}

INSTANTIATE_TEST_SUITE_P(XMLAndBinary, PropertyListFormats,
                         ::testing::Values(NSPropertyListXMLFormat_v1_0,
                                           NSPropertyListBinaryFormat_v1_0));

TEST_F(PropertyList, DatesKeepWholeSecondsInXMLAndMicrosecondsInBinary) {
    const auto date = NSDate::create(-86400.25);  // before the reference date, with a fraction
    const auto whole = NSDate::create(700000000.0);
    auto* binary = objc::cast<NSDate>(roundTrip(date, NSPropertyListBinaryFormat_v1_0));
    ASSERT_NE(binary, nullptr);
    EXPECT_NEAR(binary->interval(), -86400.25, 1e-6);
    auto* xml = objc::cast<NSDate>(roundTrip(whole, NSPropertyListXMLFormat_v1_0));
    ASSERT_NE(xml, nullptr);
    EXPECT_EQ(xml->interval(), 700000000.0);
}

TEST_F(PropertyList, ContainersThatHoldThemselvesAreRefusedNotFollowed) {
    const auto loop = NSMutableArray::create();
    loop->addObject(loop.get());
    NSError* error = nullptr;
    EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList(
                  loop, NSPropertyListBinaryFormat_v1_0, {}, &error),
              nullptr);
    EXPECT_NE(error, nullptr);
    loop->removeAllObjects();  // breaks the cycle so the array can die
}

TEST_F(PropertyList, CorruptDataGivesAnErrorNotAnObject) {
    for (const std::string_view bytes :
         {std::string_view("not a plist"), std::string_view("bplist00\x01\x02\x03"),
          std::string_view(""), std::string_view("<plist><dict><key>a</key>")}) {
        NSError* error = nullptr;
        id result = NSPropertyListSerialization::propertyListWithData(NSData::create(bytes), {},
                                                                      nullptr, &error);
        if (result == nullptr) {
            ASSERT_NE(error, nullptr) << bytes;
            EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
        }
    }
    NSError* error = nullptr;
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(nullptr, {}, nullptr, &error),
              nullptr);
    EXPECT_NE(error, nullptr);
    // Keys holding U+0000 (which aborted inside libplist) are refused, as is XML with a NUL.
    for (const std::string& bytes :
         {corpusFile("property_list/abort-libplist-utf16-key-nul.bplist"),
          corpusFile("property_list/abort-libplist-key-nul-fuzzed.bplist"),
          std::string("<plist><dict><key>a\0b</key><true/></dict></plist>", 49)}) {
        error = nullptr;
        EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(NSData::create(bytes), {},
                                                                    nullptr, &error),
                  nullptr);
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
    }
}

}  // namespace
