// The host's user-visible texts, from the main bundle's Localizable.strings
// in the user's language (the English text is the key).
#pragma once

#include <objc/string.h>

namespace host {

// The translation of the key, or the key itself; autoreleased.
NSString* localized(NSString* key);

}  // namespace host
