// NSDate: reference-date arithmetic, comparison, equality and descriptions.
#include <gtest/gtest.h>

#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>

#include <string>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

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

}  // namespace
