// NSDate: reference-date arithmetic, comparison, equality and descriptions.
#include <gtest/gtest.h>

#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>

#include <string>

#include "test_helpers.h"

namespace {

using namespace testing_support;

TEST(Date, ReferenceDateAndArithmeticAcrossLeapDaysAndBeforeTheEpoch) {
    objc::AutoreleasePool pool;
    NSDate* reference = NSDate::dateWithTimeIntervalSinceReferenceDate(0);
    EXPECT_EQ(reference->timeIntervalSince1970(), 978307200.0);
    EXPECT_EQ(text(reference->description()), "2001-01-01 00:00:00 +0000");
    NSDate* epoch = NSDate::dateWithTimeIntervalSince1970(0);
    EXPECT_EQ(epoch->timeIntervalSinceReferenceDate(), -978307200.0);
    EXPECT_DOUBLE_EQ(reference->timeIntervalSinceDate(epoch), 978307200.0);
    // 2004 is a leap year: 1155 days after the reference date is 2004-03-01.
    EXPECT_EQ(text(reference->dateByAddingTimeInterval(1155 * 86400.0 + 3661.75)->description()),
              "2004-03-01 01:01:01 +0000");
    EXPECT_EQ(text(reference->dateByAddingTimeInterval(-0.5)->description()),
              "2000-12-31 23:59:59 +0000");
    EXPECT_EQ(text(NSDate::dateWithTimeIntervalSince1970(-86400.0 * 365)->description()),
              "1969-01-01 00:00:00 +0000");
    EXPECT_EQ(text(NSDate::distantFuture()->description()), "4001-01-01 00:00:00 +0000");
    EXPECT_LT(NSDate::distantPast()->timeIntervalSinceReferenceDate(), -6.3e10);
}

TEST(Date, ComparesOrdersAndHashesByInstant) {
    objc::AutoreleasePool pool;
    auto early = NSDate::create(10);
    auto late = NSDate::create(20);
    auto alsoEarly = NSDate::create(10);
    EXPECT_EQ(late->compare(early), NSOrderedDescending);
    EXPECT_EQ(early->compare(alsoEarly), NSOrderedSame);
    EXPECT_TRUE(early->isEqual(alsoEarly));
    EXPECT_EQ(early->hash(), alsoEarly->hash());
    EXPECT_FALSE(early->isEqual(NSSTR("10")));
    EXPECT_EQ(NSDate::create(0.0)->hash(), NSDate::create(-0.0)->hash());
    EXPECT_EQ(early->laterDate(late), late.get());
    auto byDate = NSDictionary::create({{early, NSSTR("ten")}});
    EXPECT_EQ(text(static_cast<NSString*>(byDate->objectForKey(alsoEarly))), "ten");
    EXPECT_THROW(early->compare(nullptr), objc::Exception);
}

}  // namespace
