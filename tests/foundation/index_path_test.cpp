// NSIndexPath: construction, positions, ordering and equality.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSIndexPath.h>

#include <string>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

TEST(IndexPath, OrdersLexicographicallyAndEqualPathsHashEqual) {
    objc::AutoreleasePool pool;
    auto p01 = NSIndexPath::create({0, 1});
    auto p10 = NSIndexPath::create({1, 0});
    auto p1 = NSIndexPath::create({1});
    auto p11 = NSIndexPath::create({1, 1});
    EXPECT_EQ(p10->compare(p01), NSOrderedDescending);
    EXPECT_EQ(p1->compare(p10), NSOrderedAscending);
    EXPECT_EQ(p10->compare(NSIndexPath::create({1, 0})), NSOrderedSame);
    auto sorted =
        NSArray::create({p11, p10, p1, p01})->sortedArrayUsingSelector(objc::sel<"compare:">());
    EXPECT_EQ(sorted->objectAtIndex(0), p01.get());
    EXPECT_EQ(sorted->objectAtIndex(1), p1.get());
    EXPECT_EQ(sorted->objectAtIndex(3), p11.get());
    // Equal paths hash equal and find each other.
    auto a = NSIndexPath::create({2, 5});
    auto b = NSIndexPath::create({2, 5});
    EXPECT_EQ(a->hash(), b->hash());
    EXPECT_FALSE(a->isEqual(NSIndexPath::create({5, 2})));
    EXPECT_FALSE(a->isEqual(NSIndexPath::create({2, 5, 0})));
    auto heights = NSDictionary::create({{a, NSSTR("44")}});
    EXPECT_EQ(text(static_cast<NSString*>(heights->objectForKey(b))), "44");
}

}  // namespace
