// The plain C structures that cross message sends by value, with their encodings.
#pragma once

#include <objc/encoding.h>
#include <objc/types.h>

using CGFloat = double;

struct PV_EXPORT CGPoint {
    CGFloat x;
    CGFloat y;
    friend constexpr bool operator==(const CGPoint&, const CGPoint&) = default;
};

struct PV_EXPORT CGSize {
    CGFloat width;
    CGFloat height;
    friend constexpr bool operator==(const CGSize&, const CGSize&) = default;
};

struct PV_EXPORT CGRect {
    CGPoint origin;
    CGSize size;
    friend constexpr bool operator==(const CGRect&, const CGRect&) = default;
};

struct PV_EXPORT NSRange {
    NSUInteger location;
    NSUInteger length;
    friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

inline constexpr CGPoint CGPointMake(CGFloat x, CGFloat y) {
    return {x, y};
}
inline constexpr CGSize CGSizeMake(CGFloat width, CGFloat height) {
    return {width, height};
}
inline constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return {{x, y}, {width, height}};
}
inline constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
    return {location, length};
}

template <>
struct objc::TypeEncoding<CGPoint> : objc::StructEncoding<"CGPoint", CGFloat, CGFloat> {};
template <>
struct objc::TypeEncoding<CGSize> : objc::StructEncoding<"CGSize", CGFloat, CGFloat> {};
template <>
struct objc::TypeEncoding<CGRect> : objc::StructEncoding<"CGRect", CGPoint, CGSize> {};
// The platform's tag for NSRange carries the underscore.
template <>
struct objc::TypeEncoding<NSRange> : objc::StructEncoding<"_NSRange", NSUInteger, NSUInteger> {};
