// Constants and small types that Foundation classes share. NSNotFound and
// NSComparisonResult come with the runtime's string header.
#pragma once

#include <objc/string.h>
#include <objc/types.h>

#include <limits>

inline constexpr NSInteger NSIntegerMax = std::numeric_limits<NSInteger>::max();
inline constexpr NSInteger NSIntegerMin = std::numeric_limits<NSInteger>::min();
inline constexpr NSUInteger NSUIntegerMax = std::numeric_limits<NSUInteger>::max();
