// Case-insensitive keys read eight bytes at a time: they must agree with a bytewise reading.
#include <gtest/gtest.h>

#include "string_keys.h"

#include <random>
#include <string>

namespace mobilecoreservices {
namespace {

bool slowEquals(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    }
    return true;
}

TEST(StringKeys, AgreeWithByteByByteFoldingAtEveryLength) {
    std::mt19937 random(7);
    // Bytes around the A-Z and a-z edges, and UTF-8 bytes, which must never fold.
    const std::string alphabet = "@AZ[`az{09.-\xc1\xe1\xda\xfa\x80\xff";
    auto pick = [&] { return alphabet[random() % alphabet.size()]; };
    const CaseInsensitiveHash hash;
    const CaseInsensitiveEqual equal;
    for (std::size_t length = 0; length <= 33; ++length) {
        for (int round = 0; round < 300; ++round) {
            std::string a;
            for (std::size_t i = 0; i < length; ++i) a += pick();
            // b: a with each letter's case flipped at random, or a changed byte.
            std::string b = a;
            for (char& c : b) {
                if (c >= 'a' && c <= 'z' && random() % 2) c = static_cast<char>(c - 32);
                if (c >= 'A' && c <= 'Z' && random() % 2) c = static_cast<char>(c + 32);
            }
            if (length > 0 && round % 3 == 0) b[random() % length] = pick();
            SCOPED_TRACE(testing::Message() << "length " << length << ": " << a << " / " << b);
            ASSERT_EQ(equal(a, b), slowEquals(a, b));
            ASSERT_TRUE(!slowEquals(a, b) || hash(a) == hash(b));
        }
    }
    EXPECT_FALSE(equal("\xc1", "\xe1"));  // Latin-1 Á/á are not ASCII
    EXPECT_EQ(asciiLower("Public.JPEG-2000\xc1"), "public.jpeg-2000\xc1");
}

}  // namespace
}  // namespace mobilecoreservices
