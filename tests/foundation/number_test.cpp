#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include "foundation_helpers.h"

#include <climits>
#include <cmath>

namespace {

using NumberTest = testsupport::PoolTest;

// Small integers are shared per encoding; sharing keeps each number's encoding and range.
TEST_F(NumberTest, SmallIntegersAreSharedPerEncodingAndNeverCounted) {
    NSNumber* seven = NSNumber::numberWithInteger(7);
    EXPECT_EQ(NSNumber::create(7L).get(), seven);
    EXPECT_EQ(objc::adopt(objc::alloc<NSNumber>()->initWithInteger(7)).get(), seven);
    EXPECT_STREQ(NSNumber::create(7)->objCType(), "i");
    EXPECT_NE(static_cast<id>(NSNumber::create(7).get()), static_cast<id>(seven));
    EXPECT_EQ(NSNumber::create(-1L).get(), NSNumber::numberWithInteger(-1));
    EXPECT_NE(NSNumber::create(256L).get(), NSNumber::create(256L).get());
    EXPECT_NE(NSNumber::create(-2L).get(), NSNumber::create(-2L).get());

    const std::uint32_t count = objc_retainCount(seven);
    objc_retain(seven);
    objc_release(seven);
    objc::autorelease(seven);
    EXPECT_EQ(objc_retainCount(seven), count);
    EXPECT_EQ(seven->integerValue(), 7);
}

TEST_F(NumberTest, ConversionsFollowC) {
    NSNumber* f = NSNumber::numberWithDouble(3.7);
    EXPECT_EQ(f->intValue(), 3);
    EXPECT_EQ(f->floatValue(), 3.7f);
    EXPECT_EQ(NSNumber::numberWithDouble(-3.7)->intValue(), -3);
    EXPECT_EQ(NSNumber::numberWithInt(-1)->unsignedIntValue(), UINT_MAX);
    EXPECT_EQ(NSNumber::numberWithLongLong(LLONG_MAX)->doubleValue(), 9223372036854775807.0);
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(ULLONG_MAX)->longLongValue(), -1);
    // Out-of-range floating values saturate instead of being undefined.
    EXPECT_EQ(NSNumber::numberWithDouble(1e20)->intValue(), INT_MAX);
    EXPECT_EQ(NSNumber::numberWithDouble(-1e20)->longLongValue(), LLONG_MIN);
    EXPECT_EQ(NSNumber::numberWithDouble(std::nan(""))->intValue(), 0);
    EXPECT_EQ(NSNumber::numberWithDouble(-1.0)->unsignedIntValue(), UINT_MAX);
}

TEST_F(NumberTest, DescriptionsAndStringValues) {
    EXPECT_EQ(NSNumber::numberWithDouble(0.1)->description()->utf8(), "0.1");
    EXPECT_EQ(NSNumber::numberWithFloat(3.7f)->description()->utf8(), "3.7");  // not 3.70000005
    EXPECT_EQ(NSNumber::numberWithDouble(2.0)->description()->utf8(), "2");
    EXPECT_EQ(NSNumber::numberWithUnsignedLongLong(ULLONG_MAX)->stringValue()->utf8(),
              "18446744073709551615");
}

TEST_F(NumberTest, EqualityIsNumericAcrossKinds) {
    NSNumber* one = NSNumber::numberWithInt(1);
    NSNumber* oneDouble = NSNumber::numberWithDouble(1.0);
    NSNumber* yes = NSNumber::numberWithBool(true);
    EXPECT_TRUE(oneDouble->isEqual(one));
    EXPECT_TRUE(one->isEqual(yes));
    EXPECT_FALSE(NSNumber::numberWithFloat(3.7f)->isEqual(NSNumber::numberWithDouble(3.7)));
    EXPECT_FALSE(one->isEqual(NSNumber::numberWithDouble(1.5)));
    EXPECT_FALSE(one->isEqual(NSSTR("1")));
    EXPECT_TRUE(NSNumber::numberWithDouble(-0.0)->isEqual(NSNumber::numberWithInt(0)));
    // 2^64 as a double is just above the largest unsigned value, 2^63 is exact.
    EXPECT_FALSE(NSNumber::numberWithUnsignedLongLong(ULLONG_MAX)
                     ->isEqual(NSNumber::numberWithDouble(0x1p64)));
    EXPECT_TRUE(NSNumber::numberWithUnsignedLongLong(1ULL << 63)
                    ->isEqual(NSNumber::numberWithDouble(0x1p63)));
    // Large values compare exactly, not through a lossy double.
    EXPECT_FALSE(NSNumber::numberWithLongLong(LLONG_MAX)->isEqual(
        NSNumber::numberWithLongLong(LLONG_MAX - 1)));
    EXPECT_FALSE(NSNumber::numberWithLongLong(LLONG_MAX - 1)
                     ->isEqual(NSNumber::numberWithDouble(9223372036854775807.0)));
    EXPECT_TRUE(NSNumber::numberWithDouble(std::nan(""))
                    ->isEqual(NSNumber::numberWithDouble(std::nan(""))));
}

TEST_F(NumberTest, EqualNumbersHashEqual) {
    const auto sameHash = [](NSNumber* a, NSNumber* b) {
        ASSERT_TRUE(a->isEqual(b));
        EXPECT_EQ(a->hash(), b->hash()) << a->description()->utf8();
    };
    sameHash(NSNumber::numberWithInt(1), NSNumber::numberWithDouble(1.0));
    sameHash(NSNumber::numberWithInt(1), NSNumber::numberWithBool(true));
    sameHash(NSNumber::numberWithChar(65), NSNumber::numberWithUnsignedLongLong(65));
    sameHash(NSNumber::numberWithDouble(-0.0), NSNumber::numberWithInt(0));
    sameHash(NSNumber::numberWithUnsignedLongLong(1ULL << 63),
             NSNumber::numberWithDouble(9223372036854775808.0));
}

// A class with scalar properties, reached through key-value coding.
class Gauge : public NSObject {
    OBJC_CLASS(Gauge)
    int level = 0;
    bool enabled = false;
    NSComparisonResult order = NSOrderedSame;

  private:
    int imp_level() const { return level; }
    void imp_setLevel(int v) { level = v; }
};

}  // namespace

OBJC_DEFINE_CLASS(Gauge, NSObject, "NumberTestGauge")
void Gauge::objcDefine(objc::ClassBuilder<Gauge>& b) {
    b.method<&Gauge::imp_level>("level")
        .method<&Gauge::imp_setLevel>("setLevel:")
        .ivar<&Gauge::enabled>("enabled")
        .ivar<&Gauge::order>("order");
}

namespace {

TEST_F(NumberTest, KeyValueCodingBoxesScalarsAsNumbers) {
    auto g = objc::make<Gauge>();
    g->setValueForKey(NSNumber::numberWithDouble(7.9), NSSTR("level"));
    EXPECT_EQ(g->level, 7);
    auto* level = objc::cast<NSNumber>(g->valueForKey(NSSTR("level")));
    ASSERT_NE(level, nullptr);
    EXPECT_EQ(std::string(level->objCType()), "i");
    g->setValueForKey(NSSTR("YES"), NSSTR("enabled"));  // strings convert as their values
    EXPECT_TRUE(g->enabled);
    auto* enabled = objc::cast<NSNumber>(g->valueForKey(NSSTR("enabled")));
    ASSERT_NE(enabled, nullptr);
    EXPECT_TRUE(enabled->isBoolean());
    EXPECT_THROW(g->setValueForKey(NSNumber::objcClass(), NSSTR("level")), objc::Exception);
    // An enumeration travels as its underlying integer, both ways.
    g->setValueForKey(NSNumber::create(NSOrderedDescending), NSSTR("order"));
    EXPECT_EQ(g->order, NSOrderedDescending);
    auto* order = objc::cast<NSNumber>(g->valueForKey(NSSTR("order")));
    ASSERT_NE(order, nullptr);
    EXPECT_EQ(std::string(order->objCType()), "q");
    EXPECT_EQ(order->integerValue(), 1);
}

}  // namespace
