#include <Foundation/NSData.h>

#include <Foundation/NSURL.h>
#include <Foundation/url_download.h>

#include <objc/image.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>

#include "file_io.h"

namespace {

using objc::msgSend;
using objc::sel;
using Bytes = std::vector<std::uint8_t>;

struct LoaderRegistry {
    std::mutex lock;
    // http and https through libcurl until someone installs another loader.
    foundation::URLLoader loader = foundation::httpURLLoader();
};

LoaderRegistry& loaderRegistry() {
    static LoaderRegistry registry;
    return registry;
}

std::optional<Bytes> readPath(NSString* path) {
    if (path == nullptr) return std::nullopt;
    auto text = foundation::detail::readFile(path->utf8());
    if (!text) return std::nullopt;
    return Bytes(text->begin(), text->end());
}

// Replaces the file's contents in place (truncate, then write).
bool writeInPlace(const std::string& path, std::span<const std::uint8_t> bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) return false;
    bool ok = true;
    std::size_t done = 0;
    while (ok && done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        ok = n >= 0;
        if (ok) done += static_cast<std::size_t>(n);
    }
    return ::close(fd) == 0 && ok;
}

}  // namespace

void foundation::setURLLoader(URLLoader loader) {
    LoaderRegistry& registry = loaderRegistry();
    const std::lock_guard guard(registry.lock);
    registry.loader = std::move(loader);
}

OBJC_DEFINE_CLASS(NSData, NSObject, "NSData")
OBJC_REGISTER_CLASS(NSData)

void NSData::objcDefine(objc::ClassBuilder<NSData>& b) {
    b.classMethod<&NSData::imp_data>("data")
        .classMethod<&NSData::imp_dataWithBytesLength>("dataWithBytes:length:")
        .classMethod<&NSData::imp_dataWithData>("dataWithData:")
        .classMethod<&NSData::imp_dataWithContentsOfFile>("dataWithContentsOfFile:")
        .classMethod<&NSData::imp_dataWithContentsOfURL>("dataWithContentsOfURL:")
        .method<&NSData::imp_initWithBytesLength>("initWithBytes:length:")
        .method<&NSData::imp_initWithData>("initWithData:")
        .method<&NSData::imp_initWithContentsOfFile>("initWithContentsOfFile:")
        .method<&NSData::imp_initWithContentsOfURL>("initWithContentsOfURL:")
        .method<&NSData::imp_length>("length")
        .method<&NSData::imp_bytes>("bytes")
        .method<&NSData::imp_isEqual>("isEqual:")
        .method<&NSData::imp_isEqualToData>("isEqualToData:")
        .method<&NSData::imp_hash>("hash")
        .method<&NSData::imp_subdataWithRange>("subdataWithRange:")
        .method<&NSData::imp_writeToFileAtomically>("writeToFile:atomically:")
        .method<&NSData::imp_description>("description")
        .method<&NSData::imp_copyWithZone>("copyWithZone:")
        .method<&NSData::imp_mutableCopyWithZone>("mutableCopyWithZone:");
}

// ---- C++ interface ----

objc::Strong<NSData> NSData::create(std::span<const std::byte> bytes) {
    return objc::adopt(newData(objcClass(), bytes.data(), bytes.size()));
}

objc::Strong<NSData> NSData::create(std::span<const std::uint8_t> bytes) {
    return objc::adopt(newData(objcClass(), bytes.data(), bytes.size()));
}

objc::Strong<NSData> NSData::create(std::string_view bytes) {
    return objc::adopt(newData(objcClass(), bytes.data(), bytes.size()));
}

NSData* NSData::newData(Class cls, const void* bytes, std::size_t length) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSData*>(
        msgSend<id>(obj, sel<"initWithBytes:length:">(), bytes, NSUInteger{length}));
}

// ---- messages ----

NSData* NSData::imp_data(Class cls) {
    id obj = msgSend<id>(msgSend<id>(cls, sel<"alloc">()), sel<"init">());
    return static_cast<NSData*>(objc_autorelease(obj));
}

NSData* NSData::imp_dataWithBytesLength(Class cls, const void* bytes, NSUInteger length) {
    return objc::autorelease(newData(cls, bytes, length));
}

NSData* NSData::imp_dataWithData(Class cls, NSData* other) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSData*>(objc_autorelease(msgSend<id>(obj, sel<"initWithData:">(), other)));
}

NSData* NSData::imp_dataWithContentsOfFile(Class cls, NSString* path) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSData*>(
        objc_autorelease(msgSend<id>(obj, sel<"initWithContentsOfFile:">(), path)));
}

NSData* NSData::imp_dataWithContentsOfURL(Class cls, NSURL* url) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    return static_cast<NSData*>(
        objc_autorelease(msgSend<id>(obj, sel<"initWithContentsOfURL:">(), url)));
}

NSData* NSData::imp_initWithBytesLength(const void* bytes, NSUInteger length) {
    if (bytes == nullptr && length > 0) {
        objc_release(this);  // a failed init frees the object
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSData initWithBytes:length:]: bytes is NULL with length " +
                        std::to_string(length));
    }
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    bytes_.assign(first, first + length);
    return this;
}

NSData* NSData::imp_initWithData(NSData* other) {
    if (other != nullptr && other != this) bytes_ = other->bytes_;
    return this;
}

NSData* NSData::initWithLoaded(std::optional<std::vector<std::uint8_t>> loaded) {
    if (!loaded) {
        objc_release(this);
        return nullptr;
    }
    bytes_ = std::move(*loaded);
    return this;
}

NSData* NSData::imp_initWithContentsOfFile(NSString* path) {
    return initWithLoaded(readPath(path));
}

NSData* NSData::imp_initWithContentsOfURL(NSURL* url) {
    if (url == nullptr) return initWithLoaded(std::nullopt);
    if (url->isFileURL()) return initWithLoaded(readPath(url->path()));
    foundation::URLLoader loader;
    {
        LoaderRegistry& registry = loaderRegistry();
        const std::lock_guard guard(registry.lock);
        loader = registry.loader;
    }
    return initWithLoaded(loader ? loader(url) : std::nullopt);
}

bool NSData::imp_isEqual(id other) {
    if (other == this) return true;
    auto* data = objc::cast<NSData>(other);
    return data != nullptr && msgSend<bool>(this, sel<"isEqualToData:">(), data);
}

bool NSData::imp_isEqualToData(NSData* other) const {
    return other != nullptr && other->bytes_ == bytes_;
}

NSUInteger NSData::imp_hash() const {
    // The length and at most the first 80 bytes, as the platform hashes: long
    // buffers stay cheap to hash, and equal data hash equal.
    std::uint64_t h = 1469598103934665603ull ^ bytes_.size();
    const std::size_t n = std::min<std::size_t>(bytes_.size(), 80);
    for (std::size_t i = 0; i < n; ++i) h = (h ^ bytes_[i]) * 1099511628211ull;
    return h;
}

NSData* NSData::imp_subdataWithRange(NSRange range) const {
    const std::size_t n = bytes_.size();
    if (range.location > n || range.length > n - range.location) {
        objc::raise(objc::exception_name::Range, "*** -[NSData subdataWithRange:]: range {" +
                                                     std::to_string(range.location) + ", " +
                                                     std::to_string(range.length) +
                                                     "} exceeds data length " + std::to_string(n));
    }
    return objc::autorelease(
        newData(NSData::objcClass(), bytes_.data() + range.location, range.length));
}

bool NSData::imp_writeToFileAtomically(NSString* path, bool atomically) const {
    if (path == nullptr || path->utf8().empty()) return false;
    if (atomically) {
        return foundation::detail::writeFileAtomically(path->utf8(), view()).ok();
    }
    return writeInPlace(path->utf8(), bytes_);
}

NSString* NSData::imp_description() const {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 + bytes_.size() * 2 + bytes_.size() / 4);
    text.push_back('<');
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        if (i > 0 && i % 4 == 0) text.push_back(' ');
        text.push_back(kHex[bytes_[i] >> 4]);
        text.push_back(kHex[bytes_[i] & 0xF]);
    }
    text.push_back('>');
    return objc::autorelease(NSString::create(text).leak());
}

// Immutable: the data is its own copy.
id NSData::imp_copyWithZone(void*) {
    return objc_retain(this);
}

id NSData::imp_mutableCopyWithZone(void*) const {
    return newData(NSMutableData::objcClass(), bytes_.data(), bytes_.size());
}
