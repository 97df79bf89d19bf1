// Helpers shared by the files that implement NSString's Foundation methods.
#pragma once

#include <Foundation/NSString.h>

#include <string>
#include <string_view>

namespace foundation::text {

// An autoreleased immutable string holding the units.
NSString* makeString(std::u16string units);
NSString* makeString(std::string_view utf8);

// Replaces the text of a string that is being initialised (or is mutable).
void assignUnits(NSString* s, std::u16string units);

// The units of a string argument; raises NSInvalidArgumentException for nil,
// naming the method.
const std::u16string& unitsOf(NSString* s, const char* method);

// Raises NSRangeException unless location + length lies within `length`.
void checkRange(NSRange range, std::size_t length, const char* method);

// The code point starting at i (a lone surrogate stands for itself), and its length in units.
char32_t codePointAt(std::u16string_view s, std::size_t i, std::size_t* units);
// The code point ending just before `end`, and its length in units.
char32_t codePointBefore(std::u16string_view s, std::size_t end, std::size_t* units);
void appendCodePoint(std::u16string& out, char32_t c);

// Finds `needle` in haystack[range] with NSCaseInsensitiveSearch,
// NSBackwardsSearch and NSAnchoredSearch; {NSNotFound, 0} when absent or empty.
NSRange find(std::u16string_view haystack, std::u16string_view needle,
             NSStringCompareOptions options, NSRange range);

// ICU full case operations.
std::u16string toUpper(std::u16string_view s);
std::u16string toLower(std::u16string_view s);
std::u16string foldCase(std::u16string_view s);

}  // namespace foundation::text
