#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "test_helpers.h"

namespace {

using namespace testing_support;

// The question the library asks: is every character of s a decimal digit?
bool allDigits(const char* s) {
    return NSCharacterSet::decimalDigitCharacterSet()->isSupersetOfSet(
        NSCharacterSet::characterSetWithCharactersInString(S(s)));
}

class CharacterSetTest : public ::testing::Test {
    objc::AutoreleasePool pool_;
};

TEST_F(CharacterSetTest, DecimalDigitsAreUnicodeNd) {
    EXPECT_TRUE(allDigits("0123"));
    EXPECT_TRUE(allDigits(""));  // the empty set is a subset of every set
    EXPECT_FALSE(allDigits("1.5"));
    EXPECT_TRUE(allDigits("٠١٢"));  // Arabic-Indic
    EXPECT_TRUE(allDigits("𝟘𝟙"));   // mathematical double-struck, beyond the BMP
    EXPECT_FALSE(allDigits("½"));   // a number, not a decimal digit
}

TEST_F(CharacterSetTest, StandardSetsMembership) {
    NSCharacterSet* ws = NSCharacterSet::whitespaceCharacterSet();
    EXPECT_TRUE(ws->characterIsMember(0x3000));
    EXPECT_FALSE(ws->characterIsMember(u'\n'));
    NSCharacterSet* wsnl = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    for (char16_t c : {u' ', u'\t', u'\n', u'\r', u'\v', u'\f', char16_t(0x85), char16_t(0x2028)}) {
        EXPECT_TRUE(wsnl->characterIsMember(c)) << int(c);
    }
    EXPECT_TRUE(wsnl->isSupersetOfSet(ws));
    EXPECT_FALSE(ws->isSupersetOfSet(wsnl));
    NSCharacterSet* letters = NSCharacterSet::letterCharacterSet();
    EXPECT_TRUE(letters->characterIsMember(0x0301));  // combining marks count as letters
    EXPECT_FALSE(letters->characterIsMember(u'5'));
    EXPECT_TRUE(letters->longCharacterIsMember(U'𝐀'));
    NSCharacterSet* alnum = NSCharacterSet::alphanumericCharacterSet();
    EXPECT_TRUE(alnum->isSupersetOfSet(letters));
    EXPECT_FALSE(alnum->characterIsMember(u'_'));
    EXPECT_FALSE(NSCharacterSet::lowercaseLetterCharacterSet()->characterIsMember(u'Q'));
}

TEST_F(CharacterSetTest, ExplicitSetsAndRanges) {
    NSCharacterSet* set = NSCharacterSet::characterSetWithCharactersInString(S("cab😀"));
    EXPECT_TRUE(set->longCharacterIsMember(U'😀'));
    EXPECT_FALSE(set->characterIsMember(0xD83D));  // the pair is one member, not two units
    // "abc" merges into one range.
    ASSERT_EQ(set->ranges().size(), 2u);
    EXPECT_EQ(set->ranges()[0], (NSCharacterSet::Range{U'a', U'c'}));
    NSCharacterSet* range = NSCharacterSet::characterSetWithRange(NSMakeRange('0', 10));
    EXPECT_TRUE(range->characterIsMember(u'9'));
    EXPECT_FALSE(range->characterIsMember(u':'));
    EXPECT_FALSE(range->isSupersetOfSet(NSCharacterSet::decimalDigitCharacterSet()));
    EXPECT_FALSE(
        range->isSupersetOfSet(NSCharacterSet::characterSetWithCharactersInString(S("09:"))));
    EXPECT_TRUE(NSCharacterSet::characterSetWithRange(NSMakeRange(5, 0))->ranges().empty());
    EXPECT_TRUE(
        range->isEqual(NSCharacterSet::characterSetWithCharactersInString(S("9876543210"))));
    EXPECT_EQ(range->hash(),
              NSCharacterSet::characterSetWithCharactersInString(S("0123456789"))->hash());
}

TEST_F(CharacterSetTest, InvertedSetIsTheComplement) {
    NSCharacterSet* digits = NSCharacterSet::decimalDigitCharacterSet();
    objc_release(digits);  // shared and immortal: an unbalanced release must not free it
    NSCharacterSet* others = digits->invertedSet();
    EXPECT_FALSE(others->characterIsMember(0x0662));
    EXPECT_TRUE(others->longCharacterIsMember(0));
    EXPECT_TRUE(others->longCharacterIsMember(0x10FFFF));
    EXPECT_TRUE(others->invertedSet()->isEqual(digits));
    // "12a" is not all digits: its inverse shares the 'a'.
    EXPECT_NE(S("12a")->rangeOfCharacterFromSet(others).location,
              static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ(S("123")->rangeOfCharacterFromSet(others).location,
              static_cast<NSUInteger>(NSNotFound));
    NSCharacterSet* everything = NSCharacterSet::characterSetWithRange(NSMakeRange(0, 0x110000));
    EXPECT_TRUE(everything->invertedSet()->ranges().empty());
    EXPECT_TRUE(everything->isSupersetOfSet(NSCharacterSet::letterCharacterSet()));
}

TEST_F(CharacterSetTest, UrlAllowedSets) {
    NSCharacterSet* path = NSCharacterSet::URLPathAllowedCharacterSet();
    EXPECT_TRUE(path->characterIsMember(u'/'));
    EXPECT_FALSE(path->characterIsMember(u'?'));
    EXPECT_FALSE(path->characterIsMember(u';'));
    NSCharacterSet* query = NSCharacterSet::URLQueryAllowedCharacterSet();
    EXPECT_TRUE(query->characterIsMember(u'?'));
    EXPECT_FALSE(query->characterIsMember(u'#'));
    EXPECT_TRUE(NSCharacterSet::URLHostAllowedCharacterSet()->characterIsMember(u'['));
}

TEST_F(CharacterSetTest, SharedSetsAreSafeToReachFromManyThreads) {
    std::vector<std::thread> threads;
    std::vector<int> found(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &found] {
            objc::AutoreleasePool pool;
            for (int i = 0; i < 200; ++i) {
                NSCharacterSet* digits = NSCharacterSet::decimalDigitCharacterSet();
                NSCharacterSet* s =
                    NSCharacterSet::characterSetWithCharactersInString(NSSTR("٠١٢"));
                found[t] += digits->isSupersetOfSet(s) && NSSTR("a10")->localizedStandardCompare(
                                                              NSSTR("A9")) == NSOrderedDescending;
            }
        });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(found, std::vector<int>(4, 200));
}

}  // namespace
