#include <Foundation/NSLog.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include "foundation_helpers.h"

#include <climits>
#include <cmath>
#include <cstdint>

namespace {

template <class... A>
std::string fmt(const char* format, const A&... args) {
    return NSString::stringWithFormat(NSString::stringWithUTF8String(format), args...)->utf8();
}

using StringFormatTest = testsupport::PoolTest;

TEST_F(StringFormatTest, ObjectsUseTheirDescriptionAndFloatsFollowC) {
    EXPECT_EQ(fmt("%@ (Parcelvane)", NSSTR("Settings")), "Settings (Parcelvane)");
    EXPECT_EQ(fmt("[%@]", nullptr), "[(null)]");
    EXPECT_EQ(fmt("%@", NSNumber::create(3)), "3");  // a strong pointer formats its object
    EXPECT_EQ(fmt("%@", NSString::objcClass()), "NSString");
    EXPECT_EQ(fmt("%-6@|%6@", NSSTR("ab"), NSSTR("cd")), "ab    |    cd");
    EXPECT_EQ(fmt("%f", 1.5), "1.500000");
    EXPECT_EQ(fmt("%.2f%%", 99.555f), "99.56%");
    EXPECT_EQ(fmt("%8.3f|%-8.1f|%+.0f", 3.14159, 2.25, 2.5), "   3.142|2.2     |+2");
    EXPECT_EQ(fmt("%e %g %g", 12345.678, 0.0001, 1e20), "1.234568e+04 0.0001 1e+20");
    EXPECT_EQ(fmt("%.1f", 3), "3.0");  // an integer given to %f prints its value
}

TEST_F(StringFormatTest, PositionalAndStarArguments) {
    EXPECT_EQ(fmt("%2$@ %1$@", NSSTR("world"), NSSTR("hello")), "hello world");
    EXPECT_EQ(fmt("%1$d-%1$d", 3), "3-3");
    EXPECT_EQ(fmt("%*d|%.*f", 4, 7, 2, 1.0), "   7|1.00");
    // Widths and precisions stop at 10,000 characters; INT_MIN via '*' is a left-justified width.
    EXPECT_EQ(fmt("%2147483647d", 1).size(), 10000u);
    EXPECT_EQ(fmt("%99999999g", 1.0).size(), 10000u);
    EXPECT_EQ(fmt("%.99999999f", 1.0).size(), 10002u);
    EXPECT_EQ(fmt("%*@|", INT_MIN, NSSTR("x")), "x" + std::string(9999, ' ') + "|");
    EXPECT_EQ(fmt("%.*s|%.2147483647s", INT_MAX, "abc", "de"), "abc|de");
}

TEST_F(StringFormatTest, BadFormatsAreClearErrorsOrLiteralText) {
    EXPECT_THROW(fmt("%d %d", 1), objc::Exception);
    EXPECT_THROW(fmt("%@"), objc::Exception);
    EXPECT_EQ(fmt("50%"), "50%");
    EXPECT_EQ(fmt("%k", 1), "%k");
    EXPECT_EQ(NSString::stringWithFormat(nullptr, 1), nullptr);
    EXPECT_EQ(objc::formatUtf8("%d+%d", 1, 2), "1+2");
}

TEST_F(StringFormatTest, NSLogWritesOneStampedLineToStandardError) {
    ::testing::internal::CaptureStderr();
    NSLog(NSSTR("hello %@ %d"), NSSTR("log"), 5);
    const std::string out = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(out.ends_with("] hello log 5\n")) << out;
    EXPECT_NE(out.find("foundation_tests["), std::string::npos) << out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1);
    // "YYYY-MM-DD HH:MM:SS.mmm " leads the line.
    ASSERT_GT(out.size(), 24u);
    EXPECT_EQ(out[4], '-');
    EXPECT_EQ(out[19], '.');
}

}  // namespace
