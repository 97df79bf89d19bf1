// Typed values for the user defaults from what the user types, and back.
#pragma once

#include <objc/strong.h>
#include <objc/types.h>

#include <string>

namespace messenger {

// "true"/"yes" and "false"/"no" (any case): a boolean; "42", "-7": an
// integer; "0.5", "1e3": a real; "\"text\"": the text between the quotes;
// anything else: the text as typed.
objc::Strong<objc_object> parseDefaultsValue(const std::string& text);

// A value as the defaults listing shows it: text as is, booleans as
// true/false, numbers in their usual form, anything else by its description.
std::string describeDefaultsValue(id value);

}  // namespace messenger
