// Byte buffers: NSData (immutable) and NSMutableData, with file and URL loading.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/geometry.h>
#include <objc/object.h>
#include <objc/string.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

class NSURL;

class PV_EXPORT NSData : public NSObject {
    OBJC_CLASS(NSData)

    // Owned copies of the bytes.
    static objc::Strong<NSData> create(std::span<const std::byte> bytes);
    static objc::Strong<NSData> create(std::span<const std::uint8_t> bytes);
    static objc::Strong<NSData> create(std::string_view bytes);
    // The bytes, without a message.
    std::span<const std::uint8_t> span() const noexcept { return bytes_; }
    std::string_view view() const noexcept {
        return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
    }

    // Autoreleased.
    static NSData* data() { return objc::msgSend<NSData*>(objcClass(), objc::sel<"data">()); }
    static NSData* dataWithBytesLength(const void* bytes, NSUInteger length) {
        return objc::msgSend<NSData*>(objcClass(), objc::sel<"dataWithBytes:length:">(), bytes,
                                      length);
    }
    static NSData* dataWithData(NSData* other) {
        return objc::msgSend<NSData*>(objcClass(), objc::sel<"dataWithData:">(), other);
    }
    // nil when the file cannot be read.
    static NSData* dataWithContentsOfFile(NSString* path) {
        return objc::msgSend<NSData*>(objcClass(), objc::sel<"dataWithContentsOfFile:">(), path);
    }
    // File URLs are read directly; other schemes go to the registered loader.
    static NSData* dataWithContentsOfURL(NSURL* url) {
        return objc::msgSend<NSData*>(objcClass(), objc::sel<"dataWithContentsOfURL:">(), url);
    }
    NSData* initWithBytesLength(const void* bytes, NSUInteger length) {
        return objc::msgSend<NSData*>(this, objc::sel<"initWithBytes:length:">(), bytes, length);
    }
    NSData* initWithData(NSData* other) {
        return objc::msgSend<NSData*>(this, objc::sel<"initWithData:">(), other);
    }
    NSData* initWithContentsOfFile(NSString* path) {
        return objc::msgSend<NSData*>(this, objc::sel<"initWithContentsOfFile:">(), path);
    }
    NSData* initWithContentsOfURL(NSURL* url) {
        return objc::msgSend<NSData*>(this, objc::sel<"initWithContentsOfURL:">(), url);
    }

    NSUInteger length() { return objc::msgSend<NSUInteger>(this, objc::sel<"length">()); }
    const void* bytes() { return objc::msgSend<const void*>(this, objc::sel<"bytes">()); }
    bool isEqualToData(NSData* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToData:">(), other);
    }
    // Raises NSRangeException when the range passes the end.
    NSData* subdataWithRange(NSRange range) {
        return objc::msgSend<NSData*>(this, objc::sel<"subdataWithRange:">(), range);
    }
    // Atomically: written to a temporary file in the same folder, synced, then
    // renamed over the target, so that readers see the old or the new file.
    bool writeToFileAtomically(NSString* path, bool atomically) {
        return objc::msgSend<bool>(this, objc::sel<"writeToFile:atomically:">(), path, atomically);
    }

    NSData() = default;

  protected:
    // [[cls alloc] initWithBytes:length:]; owned by the caller.
    static NSData* newData(Class cls, const void* bytes, std::size_t length);

    std::vector<std::uint8_t> bytes_;

  private:
    static NSData* imp_data(Class cls);
    static NSData* imp_dataWithBytesLength(Class cls, const void* bytes, NSUInteger length);
    static NSData* imp_dataWithData(Class cls, NSData* other);
    static NSData* imp_dataWithContentsOfFile(Class cls, NSString* path);
    static NSData* imp_dataWithContentsOfURL(Class cls, NSURL* url);
    NSData* imp_initWithBytesLength(const void* bytes, NSUInteger length);
    NSData* imp_initWithData(NSData* other);
    NSData* imp_initWithContentsOfFile(NSString* path);
    NSData* imp_initWithContentsOfURL(NSURL* url);
    NSUInteger imp_length() const { return bytes_.size(); }
    const void* imp_bytes() const { return bytes_.data(); }
    bool imp_isEqual(id other);
    bool imp_isEqualToData(NSData* other) const;
    NSUInteger imp_hash() const;
    NSData* imp_subdataWithRange(NSRange range) const;
    bool imp_writeToFileAtomically(NSString* path, bool atomically) const;
    NSString* imp_description() const;
    id imp_copyWithZone(void* zone);
    id imp_mutableCopyWithZone(void* zone) const;
    // Releases self and answers nil when there is nothing to hold.
    NSData* initWithLoaded(std::optional<std::vector<std::uint8_t>> loaded);
};

class PV_EXPORT NSMutableData : public NSData {
    OBJC_CLASS(NSMutableData)

    static objc::Strong<NSMutableData> create();
    static objc::Strong<NSMutableData> create(std::span<const std::uint8_t> bytes);

    static NSMutableData* data() {
        return objc::msgSend<NSMutableData*>(objcClass(), objc::sel<"data">());
    }
    static NSMutableData* dataWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableData*>(objcClass(), objc::sel<"dataWithCapacity:">(),
                                             capacity);
    }
    static NSMutableData* dataWithLength(NSUInteger length) {
        return objc::msgSend<NSMutableData*>(objcClass(), objc::sel<"dataWithLength:">(), length);
    }

    void appendBytesLength(const void* bytes, NSUInteger length) {
        objc::msgSend<void>(this, objc::sel<"appendBytes:length:">(), bytes, length);
    }
    void appendData(NSData* other) { objc::msgSend<void>(this, objc::sel<"appendData:">(), other); }
    // New bytes are zero.
    void setLength(NSUInteger length) {
        objc::msgSend<void>(this, objc::sel<"setLength:">(), length);
    }
    void* mutableBytes() { return objc::msgSend<void*>(this, objc::sel<"mutableBytes">()); }

    NSMutableData() = default;

  private:
    static NSMutableData* imp_dataWithCapacity(Class cls, NSUInteger capacity);
    static NSMutableData* imp_dataWithLength(Class cls, NSUInteger length);
    NSMutableData* imp_initWithCapacity(NSUInteger capacity);
    NSMutableData* imp_initWithLength(NSUInteger length);
    void imp_appendBytesLength(const void* bytes, NSUInteger length);
    void imp_appendData(NSData* other);
    void imp_setLength(NSUInteger length);
    void* imp_mutableBytes() { return bytes_.data(); }
    id imp_copyWithZone(void* zone) const;
};

namespace foundation {

// Fetches the contents of a URL that is not a file URL; nullopt when it
// cannot. By default http and https are downloaded with libcurl
// (foundation::httpURLLoader in Foundation/URLDownload.h).
using URLLoader = std::function<std::optional<std::vector<std::uint8_t>>(NSURL* url)>;
// Replaces the loader; an empty function removes it.
PV_EXPORT void setURLLoader(URLLoader loader);

}  // namespace foundation
