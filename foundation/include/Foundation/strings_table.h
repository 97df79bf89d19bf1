// Localised string tables: the ".strings" files of "<lang>.lproj" folders.
#pragma once

#include <objc/export.h>
#include <objc/result.h>

#include <string>
#include <string_view>
#include <unordered_map>

namespace foundation {

// Keys to translations, as UTF-16 text.
using StringsTable = std::unordered_map<std::u16string, std::u16string>;

// Reads a table from a file's bytes: the old-style text form
//   /* comment */ "key" = "value";   // comment
// (UTF-8, or UTF-16 with or without a byte-order mark; escapes \" \\ \n \t
// \r \Uxxxx and the like; `"key";` maps a key to itself; unquoted words are
// allowed), or a property-list dictionary of strings (XML or binary), as
// compiled tables are. Malformed input answers an error that says where; a
// later entry for a key replaces an earlier one.
PV_EXPORT objc::Result<StringsTable> parseStringsTable(std::string_view bytes);

}  // namespace foundation
