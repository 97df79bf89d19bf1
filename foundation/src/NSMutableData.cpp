#include <Foundation/NSData.h>

#include <objc/image.h>

#include <algorithm>
#include <string>

namespace {

using objc::msgSend;
using objc::sel;

}  // namespace

OBJC_DEFINE_CLASS(NSMutableData, NSData, "NSMutableData")
OBJC_REGISTER_CLASS(NSMutableData)

void NSMutableData::objcDefine(objc::ClassBuilder<NSMutableData>& b) {
    b.classMethod<&NSMutableData::imp_dataWithCapacity>("dataWithCapacity:")
        .classMethod<&NSMutableData::imp_dataWithLength>("dataWithLength:")
        .method<&NSMutableData::imp_initWithCapacity>("initWithCapacity:")
        .method<&NSMutableData::imp_initWithLength>("initWithLength:")
        .method<&NSMutableData::imp_appendBytesLength>("appendBytes:length:")
        .method<&NSMutableData::imp_appendData>("appendData:")
        .method<&NSMutableData::imp_setLength>("setLength:")
        .method<&NSMutableData::imp_mutableBytes>("mutableBytes")
        .method<&NSMutableData::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSMutableData> NSMutableData::create() {
    return create(std::span<const std::uint8_t>{});
}

objc::Strong<NSMutableData> NSMutableData::create(std::span<const std::uint8_t> bytes) {
    return objc::adopt(
        static_cast<NSMutableData*>(newData(objcClass(), bytes.data(), bytes.size())));
}

NSMutableData* NSMutableData::imp_dataWithCapacity(Class cls, NSUInteger capacity) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSMutableData*>(
        objc_autorelease(msgSend<id>(obj, sel<"initWithCapacity:">(), capacity)));
}

NSMutableData* NSMutableData::imp_dataWithLength(Class cls, NSUInteger length) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSMutableData*>(
        objc_autorelease(msgSend<id>(obj, sel<"initWithLength:">(), length)));
}

NSMutableData* NSMutableData::imp_initWithCapacity(NSUInteger capacity) {
    // A hint only: an absurd capacity must not fail the allocation.
    bytes_.reserve(std::min<NSUInteger>(capacity, 1u << 20));
    return this;
}

NSMutableData* NSMutableData::imp_initWithLength(NSUInteger length) {
    imp_setLength(length);
    return this;
}

void NSMutableData::imp_appendBytesLength(const void* bytes, NSUInteger length) {
    if (length == 0) return;
    if (bytes == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableData appendBytes:length:]: bytes is NULL with length " +
                        std::to_string(length));
    }
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    // The bytes may point into this buffer, which the insertion can move.
    const std::vector<std::uint8_t> added(first, first + length);
    bytes_.insert(bytes_.end(), added.begin(), added.end());
}

void NSMutableData::imp_appendData(NSData* other) {
    if (other == nullptr) return;
    const std::span<const std::uint8_t> added = other->span();
    imp_appendBytesLength(added.data(), added.size());
}

void NSMutableData::imp_setLength(NSUInteger length) {
    if (length > bytes_.max_size()) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableData setLength:]: absurd length " + std::to_string(length));
    }
    bytes_.resize(length, 0);
}

// The copy of mutable data is immutable data.
id NSMutableData::imp_copyWithZone(void*) const {
    return newData(NSData::objcClass(), bytes_.data(), bytes_.size());
}
