// Constants and small types that Foundation classes share. NSNotFound and
// NSComparisonResult come with the runtime's string header.
#pragma once

#include <objc/string.h>
#include <objc/types.h>

#include <limits>

inline constexpr NSInteger NSIntegerMax = std::numeric_limits<NSInteger>::max();
inline constexpr NSInteger NSIntegerMin = std::numeric_limits<NSInteger>::min();
inline constexpr NSUInteger NSUIntegerMax = std::numeric_limits<NSUInteger>::max();

namespace foundation {
// Raised when a collection changes while it is being enumerated.
inline constexpr const char* kGenericException = "NSGenericException";
}  // namespace foundation
