// Localised string tables: encodings, escapes, comments; malformed files give no entries.
#include <gtest/gtest.h>

#include <Foundation/strings_table.h>

#include <random>
#include <string>

#include "foundation_helpers.h"

namespace {

using foundation::parseStringsTable;

std::u16string u(const char16_t* s) {
    return s;
}

TEST(StringsTable, ReadsEntriesWithCommentsAndWhitespace) {
    const auto table = parseStringsTable(R"(
/* The title of the settings page */
"title" = "Réglages";   // trailing comment
// a whole-line comment with "quotes" = "ignored";
  "empty"="";
"multi
line" = "kept";
/* a comment mentioning "fake" = "entry"; */
)");
    ASSERT_TRUE(table.ok());
    EXPECT_EQ(table->size(), 3u);
    EXPECT_EQ(table->at(u"title"), u(u"Réglages"));
    EXPECT_EQ(table->at(u"empty"), u(u""));
    EXPECT_EQ(table->at(u"multi\nline"), u(u"kept"));
}

TEST(StringsTable, DecodesEscapes) {
    const auto table = parseStringsTable(
        R"("quote" = "say \"hi\""; "slash" = "a\\b"; "lines" = "1\n2\t3\r";)"
        R"( "unicode" = "\U00e9\u20AC"; "pair" = "\UD83D\UDE00"; "octal" = "\101";)"
        R"( "other" = "\'\?";)");
    ASSERT_TRUE(table.ok());
    EXPECT_EQ(table->at(u"quote"), u(u"say \"hi\""));
    EXPECT_EQ(table->at(u"slash"), u(u"a\\b"));
    EXPECT_EQ(table->at(u"lines"), u(u"1\n2\t3\r"));
    EXPECT_EQ(table->at(u"unicode"), u(u"é€"));
    EXPECT_EQ(table->at(u"pair"), u(u"😀"));
    EXPECT_EQ(table->at(u"octal"), u(u"A"));
    EXPECT_EQ(table->at(u"other"), u(u"'?"));
}

TEST(StringsTable, AcceptsKeyOnlyEntriesUnquotedWordsAndLaterDuplicates) {
    const auto table =
        parseStringsTable("\"same\"; plain = word_1.2; \"dup\" = \"a\"; \"dup\" = \"b\";");
    ASSERT_TRUE(table.ok());
    EXPECT_EQ(table->at(u"same"), u(u"same"));
    EXPECT_EQ(table->at(u"plain"), u(u"word_1.2"));
    EXPECT_EQ(table->at(u"dup"), u(u"b"));
}

TEST(StringsTable, ReadsUtf16WithAndWithoutByteOrderMarkAndUtf8WithMark) {
    const std::u16string text = u"\"k\" = \"ü€😀\";";
    const auto encode = [&](bool bigEndian, bool mark) {
        std::string bytes;
        if (mark) bytes += bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char16_t c : text) {
            const char hi = static_cast<char>(c >> 8);
            const char lo = static_cast<char>(c & 0xFF);
            bytes += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
        }
        return bytes;
    };
    for (const bool bigEndian : {false, true}) {
        for (const bool mark : {true, false}) {
            const auto table = parseStringsTable(encode(bigEndian, mark));
            ASSERT_TRUE(table.ok()) << bigEndian << mark;
            EXPECT_EQ(table->at(u"k"), u(u"ü€😀"));
        }
    }
    const auto utf8 = parseStringsTable("\xEF\xBB\xBF\"k\" = \"\xC3\xBC\";");
    ASSERT_TRUE(utf8.ok());
    EXPECT_EQ(utf8->at(u"k"), u(u"ü"));
}

TEST(StringsTable, MalformedInputGivesNoEntries) {
    for (const char* text : {"", "   \n", "/* nothing */", "// nothing"}) {
        EXPECT_TRUE(parseStringsTable(text).value().empty()) << text;  // empty, not malformed
    }
    for (const char* text : {
             R"("a" = "b")",           // no semicolon
             R"("a" = "b)",            // unterminated string
             R"("a" = ;)",             // no value
             R"("a" "b";)",            // no equals sign
             R"(= "b";)",              // no key
             R"("a" = "b"; /* open)",  // unterminated comment
             R"("a" = "\)",            // escape at the end
             R"("a" = "\U";)",         // escape without digits
             R"("a" = "b";;)",         // stray semicolon
             "{ \"a\" = \"b\"; }",     // a dictionary, not a table
         }) {
        EXPECT_FALSE(parseStringsTable(text).ok()) << text;
    }
    // A compiled table whose key holds U+0000 aborted inside libplist.
    EXPECT_FALSE(parseStringsTable(
                     testsupport::corpusFile("strings_table/abort-libplist-utf16-key-nul.strings"))
                     .ok());
}

TEST(StringsTable, ReadsCompiledPropertyListTables) {
    const auto table = parseStringsTable(R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>hello</key><string>bonjour</string></dict></plist>)");
    ASSERT_TRUE(table.ok());
    EXPECT_EQ(table->at(u"hello"), u(u"bonjour"));
    // A property list that is not a dictionary of strings is malformed.
    EXPECT_FALSE(parseStringsTable(R"(<?xml version="1.0"?>
<plist version="1.0"><dict><key>n</key><integer>1</integer></dict></plist>)")
                     .ok());
}

}  // namespace
