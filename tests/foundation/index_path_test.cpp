// NSIndexPath: construction, positions, ordering and equality.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSIndexPath.h>

#include <string>

namespace {

std::string text(NSString* s) {
    return s != nullptr ? s->utf8() : std::string("(nil)");
}

TEST(IndexPath, RowsAndSectionsAreItsTwoPositions) {
    objc::AutoreleasePool pool;
    NSIndexPath* path = NSIndexPath::indexPathForRowInSection(3, 1);
    EXPECT_EQ(path->section(), 1);
    EXPECT_EQ(path->row(), 3);
    EXPECT_EQ(path->item(), 3);
    EXPECT_EQ(path->length(), 2u);
    EXPECT_EQ(path->indexAtPosition(0), 1u);
    EXPECT_EQ(path->indexAtPosition(1), 3u);
    EXPECT_EQ(path->indexAtPosition(2), static_cast<NSUInteger>(NSNotFound));
    EXPECT_TRUE(path->isEqual(NSIndexPath::indexPathForItemInSection(3, 1)));

    NSIndexPath* single = NSIndexPath::indexPathWithIndex(4);
    EXPECT_EQ(single->length(), 1u);
    EXPECT_EQ(single->row(), NSNotFound);
    NSIndexPath* deeper = single->indexPathByAddingIndex(9);
    EXPECT_EQ(deeper->length(), 2u);
    EXPECT_EQ(deeper->row(), 9);
    const NSUInteger indexes[] = {1, 2, 3};
    NSIndexPath* three = NSIndexPath::indexPathWithIndexesLength(indexes, 3);
    EXPECT_EQ(three->indexAtPosition(2), 3u);
    EXPECT_EQ(text(three->description()).substr(text(three->description()).find('{')),
              "{length = 3, path = 1 - 2 - 3}");
}

TEST(IndexPath, OrdersLexicographicallyWithPrefixesFirst) {
    objc::AutoreleasePool pool;
    auto p01 = NSIndexPath::create({0, 1});
    auto p10 = NSIndexPath::create({1, 0});
    auto p1 = NSIndexPath::create({1});
    auto p11 = NSIndexPath::create({1, 1});
    EXPECT_EQ(p01->compare(p10), NSOrderedAscending);
    EXPECT_EQ(p10->compare(p01), NSOrderedDescending);
    EXPECT_EQ(p1->compare(p10), NSOrderedAscending);
    EXPECT_EQ(p10->compare(NSIndexPath::create({1, 0})), NSOrderedSame);
    auto sorted =
        NSArray::create({p11, p10, p1, p01})->sortedArrayUsingSelector(objc::sel<"compare:">());
    EXPECT_EQ(sorted->objectAtIndex(0), p01.get());
    EXPECT_EQ(sorted->objectAtIndex(1), p1.get());
    EXPECT_EQ(sorted->objectAtIndex(3), p11.get());
}

TEST(IndexPath, EqualPathsHashEqualAndFindEachOther) {
    objc::AutoreleasePool pool;
    auto a = NSIndexPath::create({2, 5});
    auto b = NSIndexPath::create({2, 5});
    EXPECT_TRUE(a->isEqual(b));
    EXPECT_EQ(a->hash(), b->hash());
    EXPECT_FALSE(a->isEqual(NSIndexPath::create({5, 2})));
    EXPECT_FALSE(a->isEqual(NSIndexPath::create({2, 5, 0})));
    auto heights = NSDictionary::create({{a, NSSTR("44")}});
    EXPECT_EQ(text(static_cast<NSString*>(heights->objectForKey(b))), "44");
    EXPECT_EQ(objc::adopt(a->copy()).get(), static_cast<id>(a.get()));
}

}  // namespace
