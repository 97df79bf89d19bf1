#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

bool notFound(NSRange r) {
    return r.location == static_cast<NSUInteger>(NSNotFound) && r.length == 0;
}

using StringTest = testsupport::PoolTest;

TEST_F(StringTest, LengthsAndIndexesCountUtf16UnitsAndAreChecked) {
    NSString* s = S("a😀b");  // the emoji takes a surrogate pair
    EXPECT_EQ(s->length(), 4u);
    EXPECT_EQ(s->characterAtIndex(1), 0xD83D);
    EXPECT_EQ(text(s->substringFromIndex(3)), "b");
    EXPECT_EQ(text(s->substringWithRange(NSMakeRange(1, 2))), "😀");
    EXPECT_EQ(s->rangeOfString(S("b")).location, 3u);
    EXPECT_EQ(S("é")->length(), 1u);
    // Substrings out of range raise a range exception.
    s = S("hello");
    EXPECT_EQ(text(s->substringFromIndex(5)), "");
    EXPECT_EQ(text(s->substringWithRange(NSMakeRange(5, 0))), "");
    for (const NSRange r : {NSMakeRange(3, 3), NSMakeRange(6, 0), NSMakeRange(2, ~NSUInteger{0})}) {
        try {
            s->substringWithRange(r);  // location + length wrapping around must not pass
            ADD_FAILURE() << "no exception";
        } catch (const objc::Exception& e) {
            EXPECT_EQ(e.name(), objc::exception_name::Range);
        }
    }
    EXPECT_THROW(s->substringToIndex(6), objc::Exception);
}

TEST_F(StringTest, TrimmingUsesUnicodeWhitespace) {
    NSCharacterSet* ws = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    EXPECT_EQ(text(S(" \t\n hi there \r\n")->stringByTrimmingCharactersInSet(ws)), "hi there");
    // No-break space and the ideographic space are whitespace too.
    EXPECT_EQ(text(S("\u00A0\u3000x\u00A0")->stringByTrimmingCharactersInSet(ws)), "x");
    // Whitespace alone leaves newlines in place.
    EXPECT_EQ(text(S("\n x \n")->stringByTrimmingCharactersInSet(
                  NSCharacterSet::whitespaceCharacterSet())),
              "\n x \n");
    // Whole surrogate pairs are trimmed, never half of one.
    NSCharacterSet* emoji = NSCharacterSet::characterSetWithCharactersInString(S("😀"));
    EXPECT_EQ(text(S("😀ok😀")->stringByTrimmingCharactersInSet(emoji)), "ok");
    EXPECT_EQ(text(S("😁ok")->stringByTrimmingCharactersInSet(emoji)), "😁ok");
}

TEST_F(StringTest, RangeOfStringWithOptions) {
    NSString* s = S("one Two one two");
    EXPECT_EQ(s->rangeOfString(S("one")).location, 0u);
    EXPECT_EQ(s->rangeOfString(S("one"), NSBackwardsSearch).location, 8u);
    EXPECT_EQ(s->rangeOfString(S("two"), NSCaseInsensitiveSearch).location, 4u);
    EXPECT_EQ(s->rangeOfString(S("TWO"), NSCaseInsensitiveSearch | NSBackwardsSearch).location,
              12u);
    EXPECT_TRUE(notFound(s->rangeOfString(S("Two"), NSAnchoredSearch)));
    EXPECT_EQ(s->rangeOfString(S("two"), NSAnchoredSearch | NSBackwardsSearch).location, 12u);
    EXPECT_TRUE(notFound(s->rangeOfString(S(""))));
    EXPECT_EQ(s->rangeOfString(S("one"), NSStringCompareOptions{}, NSMakeRange(1, 14)).location,
              8u);
    EXPECT_TRUE(notFound(s->rangeOfString(S("one"), NSStringCompareOptions{}, NSMakeRange(1, 9))));
    EXPECT_THROW(s->rangeOfString(S("one"), NSStringCompareOptions{}, NSMakeRange(10, 10)),
                 objc::Exception);
}

TEST_F(StringTest, NumericCompareOrdersVersionNumbers) {
    EXPECT_EQ(S("2.12.5")->compare(S("2.9"), NSNumericSearch), NSOrderedDescending);
    EXPECT_EQ(S("10")->compare(S("9"), NSNumericSearch), NSOrderedDescending);
    EXPECT_EQ(S("2.9")->compare(S("2.9"), NSNumericSearch), NSOrderedSame);
    EXPECT_EQ(S("2.9")->compare(S("2.9.1"), NSNumericSearch), NSOrderedAscending);
    EXPECT_EQ(S("file2")->compare(S("file010"), NSNumericSearch), NSOrderedAscending);
    // Without the option digits compare as characters.
    EXPECT_EQ(S("10")->compare(S("9")), NSOrderedAscending);
    EXPECT_EQ(S("2.12.5")->compare(S("2.9")), NSOrderedAscending);
}

TEST_F(StringTest, NumberValuesTakeTheLongestPrefixAndSaturate) {
    EXPECT_EQ(S("8.4.1")->floatValue(), 8.4f);
    EXPECT_EQ(S("  -2.5e2xyz")->doubleValue(), -250.0);
    EXPECT_EQ(S("+.5")->doubleValue(), 0.5);
    EXPECT_EQ(S("1e")->doubleValue(), 1.0);
    EXPECT_EQ(S("abc")->doubleValue(), 0.0);
    EXPECT_EQ(S(".")->doubleValue(), 0.0);
    EXPECT_TRUE(std::isinf(S("1e999")->doubleValue()));
    EXPECT_EQ(S("1e-999")->doubleValue(), 0.0);
    // Integer values saturate.
    EXPECT_EQ(S("  -42a")->intValue(), -42);
    EXPECT_EQ(S("3.9")->intValue(), 3);
    EXPECT_EQ(S("- 3")->intValue(), 0);
    EXPECT_EQ(S("99999999999")->intValue(), INT_MAX);
    EXPECT_EQ(S("-99999999999")->intValue(), INT_MIN);
    EXPECT_EQ(S("-2147483648")->intValue(), INT_MIN);
    EXPECT_EQ(S("99999999999999999999")->longLongValue(), LLONG_MAX);
    EXPECT_EQ(S("-9223372036854775808")->longLongValue(), LLONG_MIN);
    EXPECT_EQ(S("-99999999999999999999")->integerValue(), LONG_MIN);
    // A bool value looks at the first significant character.
    for (const char* yes : {"YES", "yes", "true", "T", "1", "  +0012", "-5", "9"}) {
        EXPECT_TRUE(S(yes)->boolValue()) << yes;
    }
    for (const char* no : {"NO", "false", "0", "000", "", "  ", "abc", "-0", "n"}) {
        EXPECT_FALSE(S(no)->boolValue()) << no;
    }
}

TEST_F(StringTest, PathComponentsAndStandardizing) {
    EXPECT_EQ(text(S("/tmp/lock/")->lastPathComponent()), "lock");
    EXPECT_EQ(text(S("/")->lastPathComponent()), "/");
    EXPECT_EQ(text(S("/tmp/archive.tar.gz")->pathExtension()), "gz");
    EXPECT_EQ(text(S("/tmp/.hidden")->pathExtension()), "");
    EXPECT_EQ(text(S("/tmp.d/file")->pathExtension()), "");
    EXPECT_EQ(text(S("/tmp/lock/")->stringByDeletingLastPathComponent()), "/tmp");
    EXPECT_EQ(text(S("/tmp")->stringByDeletingLastPathComponent()), "/");
    EXPECT_EQ(text(S("scratch")->stringByDeletingLastPathComponent()), "");
    EXPECT_EQ(text(S("/")->stringByDeletingLastPathComponent()), "/");
    EXPECT_EQ(text(S("/tmp/")->stringByAppendingPathComponent(S("/x/"))), "/tmp/x");
    EXPECT_EQ(text(S("/")->stringByAppendingPathComponent(S("x"))), "/x");
    EXPECT_EQ(text(S("")->stringByAppendingPathComponent(S("x"))), "x");
    EXPECT_EQ(text(S("/tmp/a.b.c")->stringByDeletingPathExtension()), "/tmp/a.b");
    EXPECT_EQ(text(S("/tmp/.bashrc")->stringByDeletingPathExtension()), "/tmp/.bashrc");
    EXPECT_EQ(text(S("/tmp/a/")->stringByAppendingPathExtension(S("zip"))), "/tmp/a.zip");
    EXPECT_EQ(S("")->stringByAppendingPathExtension(S("zip")), nullptr);
    EXPECT_EQ(texts(S("/tmp/a/")->pathComponents()),
              (std::vector<std::string>{"/", "tmp", "a", "/"}));
    EXPECT_EQ(texts(S("a//b")->pathComponents()), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(S("x/y")->isAbsolutePath());
    // Standardizing resolves dots in absolute paths only.
    EXPECT_EQ(text(S("/a//b/./c/../d/")->stringByStandardizingPath()), "/a/b/d");
    EXPECT_EQ(text(S("/..")->stringByStandardizingPath()), "/");
    EXPECT_EQ(text(S("a/./../b")->stringByStandardizingPath()), "a/../b");
    setenv("HOME", "/home/tester", 1);
    EXPECT_EQ(text(S("~/Documents")->stringByStandardizingPath()), "/home/tester/Documents");
    EXPECT_EQ(text(S("~")->stringByExpandingTildeInPath()), "/home/tester");
    EXPECT_EQ(text(S("~nosuchuser4711/x")->stringByExpandingTildeInPath()), "~nosuchuser4711/x");
}

TEST_F(StringTest, PercentEncoding) {
    NSString* s = S("a b/ü?");
    NSString* encoded = s->stringByAddingPercentEncodingWithAllowedCharacters(
        NSCharacterSet::URLPathAllowedCharacterSet());
    EXPECT_EQ(text(encoded), "a%20b/%C3%BC%3F");
    EXPECT_EQ(text(encoded->stringByRemovingPercentEncoding()), "a b/ü?");
    EXPECT_EQ(S("%zz")->stringByRemovingPercentEncoding(), nullptr);
    EXPECT_EQ(S("%FF")->stringByRemovingPercentEncoding(), nullptr);  // not UTF-8
}

TEST_F(StringTest, MutableStringEditsInPlaceAndKeepsHashInStep) {
    NSMutableString* m = NSMutableString::stringWithCapacity(8);
    m->appendString(S("world"));
    m->insertString(S("hello "), 0);
    m->appendFormat(NSSTR(" %d!"), 42);
    EXPECT_EQ(text(m), "hello world 42!");
    EXPECT_TRUE(m->isEqual(S("hello world 42!")));
    EXPECT_EQ(m->hash(), S("hello world 42!")->hash());
    m->deleteCharactersInRange(NSMakeRange(5, 6));
    m->replaceCharactersInRange(NSMakeRange(0, 5), S("bye"));
    EXPECT_EQ(text(m), "bye 42!");
    EXPECT_EQ(m->replaceOccurrencesOfString(S("4"), S("44"), NSStringCompareOptions{},
                                            NSMakeRange(0, m->length())),
              1u);
    m->setString(m);  // its own contents
    EXPECT_EQ(text(m), "bye 442!");
    EXPECT_THROW(m->insertString(S("x"), 100), objc::Exception);
    EXPECT_THROW(m->deleteCharactersInRange(NSMakeRange(7, 2)), objc::Exception);
    EXPECT_EQ(text(m), "bye 442!");
}

}  // namespace
