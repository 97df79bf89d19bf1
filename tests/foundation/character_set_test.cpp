#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

// The question the library asks: is every character of s a decimal digit?
bool allDigits(const char* s) {
    return NSCharacterSet::decimalDigitCharacterSet()->isSupersetOfSet(
        NSCharacterSet::characterSetWithCharactersInString(S(s)));
}

using CharacterSetTest = testsupport::PoolTest;

TEST_F(CharacterSetTest, DecimalDigitsAreUnicodeNdAndURLSetsAllowTheirParts) {
    EXPECT_TRUE(allDigits("0123"));
    EXPECT_TRUE(allDigits(""));  // the empty set is a subset of every set
    EXPECT_FALSE(allDigits("1.5"));
    EXPECT_TRUE(allDigits("٠١٢"));  // Arabic-Indic
    EXPECT_TRUE(allDigits("𝟘𝟙"));   // mathematical double-struck, beyond the BMP
    EXPECT_FALSE(allDigits("½"));   // a number, not a decimal digit

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
