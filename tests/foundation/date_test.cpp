// NSDate: reference-date arithmetic, comparison, equality and descriptions.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>

#include <chrono>
#include <string>

namespace {

std::string text(NSString* s) {
    return s != nullptr ? s->utf8() : std::string("(nil)");
}

TEST(Date, ReferenceDateIsTheStartOf2001InUtc) {
    objc::AutoreleasePool pool;
    NSDate* reference = NSDate::dateWithTimeIntervalSinceReferenceDate(0);
    EXPECT_EQ(reference->timeIntervalSince1970(), 978307200.0);
    EXPECT_EQ(text(reference->description()), "2001-01-01 00:00:00 +0000");
    NSDate* epoch = NSDate::dateWithTimeIntervalSince1970(0);
    EXPECT_EQ(epoch->timeIntervalSinceReferenceDate(), -978307200.0);
    EXPECT_EQ(text(epoch->description()), "1970-01-01 00:00:00 +0000");
    EXPECT_DOUBLE_EQ(reference->timeIntervalSinceDate(epoch), 978307200.0);
}

TEST(Date, ArithmeticAcrossLeapDaysAndBeforeTheEpoch) {
    objc::AutoreleasePool pool;
    NSDate* reference = NSDate::dateWithTimeIntervalSinceReferenceDate(0);
    // 2004 is a leap year: 1155 days after the reference date is 2004-03-01.
    EXPECT_EQ(text(reference->dateByAddingTimeInterval(1155 * 86400.0 + 3661.75)->description()),
              "2004-03-01 01:01:01 +0000");
    EXPECT_EQ(text(reference->dateByAddingTimeInterval(-0.5)->description()),
              "2000-12-31 23:59:59 +0000");
    EXPECT_EQ(text(NSDate::dateWithTimeIntervalSince1970(-86400.0 * 365)->description()),
              "1969-01-01 00:00:00 +0000");
    EXPECT_EQ(text(NSDate::dateWithTimeIntervalSince1970(1700000000)->description()),
              "2023-11-14 22:13:20 +0000");
    EXPECT_EQ(text(NSDate::distantFuture()->description()), "4001-01-01 00:00:00 +0000");
    EXPECT_LT(NSDate::distantPast()->timeIntervalSinceReferenceDate(), -6.3e10);

    auto owned = objc::adopt(objc::alloc<NSDate>()->initWithTimeIntervalSinceDate(60, reference));
    EXPECT_EQ(owned->timeIntervalSinceReferenceDate(), 60.0);
    EXPECT_EQ(owned->timeIntervalSinceDate(reference), 60.0);
}

TEST(Date, NowIsTheSystemClock) {
    objc::AutoreleasePool pool;
    const double system =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(NSDate::date()->timeIntervalSince1970(), system, 5.0);
    NSDate* later = NSDate::dateWithTimeIntervalSinceNow(100);
    EXPECT_NEAR(later->timeIntervalSinceNow(), 100.0, 5.0);
    EXPECT_GT(later->timeIntervalSinceDate(NSDate::date()), 90.0);
}

TEST(Date, ComparesOrdersAndHashesByInstant) {
    objc::AutoreleasePool pool;
    auto early = NSDate::create(10);
    auto late = NSDate::create(20);
    auto alsoEarly = NSDate::create(10);
    EXPECT_EQ(early->compare(late), NSOrderedAscending);
    EXPECT_EQ(late->compare(early), NSOrderedDescending);
    EXPECT_EQ(early->compare(alsoEarly), NSOrderedSame);
    EXPECT_TRUE(early->isEqual(alsoEarly));
    EXPECT_TRUE(early->isEqualToDate(alsoEarly));
    EXPECT_EQ(early->hash(), alsoEarly->hash());
    EXPECT_FALSE(early->isEqual(late));
    EXPECT_FALSE(early->isEqual(NSSTR("10")));
    EXPECT_EQ(NSDate::create(0.0)->hash(), NSDate::create(-0.0)->hash());
    EXPECT_EQ(early->earlierDate(late), early.get());
    EXPECT_EQ(early->laterDate(late), late.get());
    EXPECT_EQ(objc::adopt(early->copy()).get(), static_cast<id>(early.get()));

    // Dates sort and serve as dictionary keys like any value.
    auto sorted = NSArray::create({late, early})->sortedArrayUsingSelector(objc::sel<"compare:">());
    EXPECT_EQ(sorted->firstObject(), early.get());
    auto byDate = NSDictionary::create({{early, NSSTR("ten")}});
    EXPECT_EQ(text(static_cast<NSString*>(byDate->objectForKey(alsoEarly))), "ten");

    try {
        early->compare(nullptr);
        ADD_FAILURE() << "comparing with nil must raise";
    } catch (const objc::Exception& e) {
        EXPECT_EQ(e.name(), "NSInvalidArgumentException");
    }
}

}  // namespace
