// Text from names and input, made safe to print on a terminal: a file or chat
// name may hold escape sequences or line breaks that would otherwise move the
// cursor, recolour the screen or forge a line.
#pragma once

#include <string>
#include <string_view>

namespace messenger {

// The text with every control character escaped: line feed, carriage
// return and tab as "\n", "\r" and "\t", the other C0 bytes and DEL as
// "\x1b" or "\x7f", the C1 controls (U+0080 to U+009F) as "\u{9b}", and
// bytes that are no UTF-8 as "\xff".
// Other UTF-8 text, Arabic included, is kept as it is.
std::string printable(std::string_view text);

}  // namespace messenger
