// The platform's old-style property-list text, as collection descriptions
// print it: "(\n    a,\n    b\n)" and "{\n    key = value;\n}".
#pragma once

#include <objc/object.h>

#include <string>

namespace foundation::detail {

// Four spaces per level.
void appendIndent(std::u16string& out, NSUInteger level);

// Appends an element of a collection printed at `level`: nested collections
// describe themselves one level deeper (descriptionWithLocale:indent:),
// anything else by its description, quoted when it is not a bare word.
void appendElementDescription(std::u16string& out, id element, id locale, NSUInteger level);

// Appends text as a bare word or, where needed, as a quoted, escaped string.
void appendQuotedIfNeeded(std::u16string& out, const std::u16string& text);

// An autoreleased string holding the text.
NSString* autoreleasedString(std::u16string text);

}  // namespace foundation::detail
