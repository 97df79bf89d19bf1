// A decoded bitmap: straight (not premultiplied) RGBA, 8 bits a channel,
// rows top to bottom.
//
// PNG files are decoded with libpng from memory. Bytes that are not a PNG,
// or a PNG that fails to decode (truncated, corrupt), give nil: never a crash.
#pragma once

#include <objc/geometry.h>
#include <objc/object.h>
#include <objc/string.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class NSData;

class PV_EXPORT UIImage : public NSObject {
    OBJC_CLASS(UIImage)

    // An owned image from pixels: `rgba` holds width * height * 4 bytes
    // (raises NSInvalidArgumentException otherwise).
    static objc::Strong<UIImage> create(std::size_t width, std::size_t height,
                                        std::vector<std::uint8_t> rgba, CGFloat scale = 1.0);
    // Decodes PNG bytes; null when they are not a decodable PNG.
    static objc::Strong<UIImage> decodePNG(std::span<const std::uint8_t> bytes,
                                           CGFloat scale = 1.0);

    // Autoreleased; nil when the data is not a decodable image. Scale 1.
    static UIImage* imageWithData(NSData* data) {
        return objc::msgSend<UIImage*>(objcClass(), objc::sel<"imageWithData:">(), data);
    }
    // A file whose name ends in "@2x" or "@3x" (before the extension) has
    // that scale; others scale 1.
    static UIImage* imageWithContentsOfFile(NSString* path) {
        return objc::msgSend<UIImage*>(objcClass(), objc::sel<"imageWithContentsOfFile:">(), path);
    }
    UIImage* initWithData(NSData* data) {
        return objc::msgSend<UIImage*>(this, objc::sel<"initWithData:">(), data);
    }
    UIImage* initWithContentsOfFile(NSString* path) {
        return objc::msgSend<UIImage*>(this, objc::sel<"initWithContentsOfFile:">(), path);
    }

    // Points: pixels divided by the scale.
    CGSize size() { return objc::msgSend<CGSize>(this, objc::sel<"size">()); }
    CGFloat scale() { return objc::msgSend<CGFloat>(this, objc::sel<"scale">()); }

    // Pixels, without messages.
    std::size_t pixelWidth() const noexcept { return width_; }
    std::size_t pixelHeight() const noexcept { return height_; }
    std::span<const std::uint8_t> rgba() const noexcept { return pixels_; }
    // The RGBA bytes of one pixel (x from the left, y from the top).
    std::span<const std::uint8_t, 4> pixelAt(std::size_t x, std::size_t y) const;

    UIImage() = default;

  private:
    static UIImage* imp_imageWithData(Class cls, NSData* data);
    static UIImage* imp_imageWithContentsOfFile(Class cls, NSString* path);
    UIImage* imp_initWithData(NSData* data);
    UIImage* imp_initWithContentsOfFile(NSString* path);
    CGSize imp_size() const;
    CGFloat imp_scale() const { return scale_; }
    // Takes the decoded pixels, or releases self and answers nil.
    UIImage* initWithDecoded(std::span<const std::uint8_t> bytes, CGFloat scale);

    std::size_t width_ = 0;
    std::size_t height_ = 0;
    CGFloat scale_ = 1.0;
    std::vector<std::uint8_t> pixels_;
};

// The image as PNG bytes (autoreleased), or nil for nil.
PV_EXPORT NSData* UIImagePNGRepresentation(UIImage* image);
