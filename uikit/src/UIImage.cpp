#include <UIKit/UIImage.h>

#include <Foundation/NSData.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <png.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

OBJC_DEFINE_CLASS(UIImage, NSObject, "UIImage")
OBJC_REGISTER_CLASS(UIImage)

void UIImage::objcDefine(objc::ClassBuilder<UIImage>& b) {
    b.classMethod<&UIImage::imp_imageWithData>("imageWithData:")
        .classMethod<&UIImage::imp_imageWithContentsOfFile>("imageWithContentsOfFile:")
        .method<&UIImage::imp_initWithData>("initWithData:")
        .method<&UIImage::imp_initWithContentsOfFile>("initWithContentsOfFile:")
        .method<&UIImage::imp_size>("size")
        .method<&UIImage::imp_scale>("scale");
}

namespace {

// Refuses images whose pixels would not fit in memory sensibly: a small
// file can claim enormous dimensions.
constexpr std::size_t kMaxPixels = std::size_t{1} << 26;

struct Decoded {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint8_t> rgba;
};

// libpng's simplified reader keeps its error jumps inside libpng, so a bad
// file comes back as a zero result rather than unwinding through our frames.
std::optional<Decoded> decode(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < 8 || png_sig_cmp(bytes.data(), 0, 8) != 0) return std::nullopt;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return std::nullopt;
    }
    const std::size_t pixels = std::size_t{image.width} * image.height;
    if (image.width == 0 || image.height == 0 || pixels > kMaxPixels) {
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGBA;
    Decoded out{image.width, image.height, std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
    if (png_image_finish_read(&image, nullptr, out.rgba.data(), 0, nullptr) == 0) {
        png_image_free(&image);
        return std::nullopt;
    }
    return out;
}

std::optional<std::vector<std::uint8_t>> readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>()};
    if (in.bad()) return std::nullopt;
    return bytes;
}

// "icon@2x.png" is drawn at scale 2, as the platform reads file names.
CGFloat scaleFromName(const std::string& path) {
    std::string name = path.substr(path.find_last_of('/') + 1);
    const auto dot = name.find_last_of('.');
    if (dot != std::string::npos) name.resize(dot);
    if (name.ends_with("@2x")) return 2.0;
    if (name.ends_with("@3x")) return 3.0;
    return 1.0;
}

}  // namespace

objc::Strong<UIImage> UIImage::create(std::size_t width, std::size_t height,
                                      std::vector<std::uint8_t> rgba, CGFloat scale) {
    if (width == 0 || height == 0 || rgba.size() != width * height * 4 || !(scale > 0)) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "UIImage: pixel buffer does not match " + std::to_string(width) + "x" +
                        std::to_string(height) + " RGBA at a positive scale");
    }
    auto image = objc::make<UIImage>();
    image->width_ = width;
    image->height_ = height;
    image->pixels_ = std::move(rgba);
    image->scale_ = scale;
    return image;
}

objc::Strong<UIImage> UIImage::decodePNG(std::span<const std::uint8_t> bytes, CGFloat scale) {
    auto decoded = decode(bytes);
    if (!decoded) return nullptr;
    return create(decoded->width, decoded->height, std::move(decoded->rgba), scale);
}

std::span<const std::uint8_t, 4> UIImage::pixelAt(std::size_t x, std::size_t y) const {
    if (x >= width_ || y >= height_) {
        objc::raise(objc::exception_name::Range, "UIImage: pixel (" + std::to_string(x) + ", " +
                                                     std::to_string(y) + ") outside the image");
    }
    return std::span<const std::uint8_t, 4>(pixels_.data() + (y * width_ + x) * 4, 4);
}

UIImage* UIImage::imp_imageWithData(Class cls, NSData* data) {
    id obj = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<UIImage*>(
        objc_autorelease(objc::msgSend<id>(obj, objc::sel<"initWithData:">(), data)));
}

UIImage* UIImage::imp_imageWithContentsOfFile(Class cls, NSString* path) {
    id obj = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return static_cast<UIImage*>(
        objc_autorelease(objc::msgSend<id>(obj, objc::sel<"initWithContentsOfFile:">(), path)));
}

UIImage* UIImage::initWithDecoded(std::span<const std::uint8_t> bytes, CGFloat scale) {
    auto decoded = decode(bytes);
    if (!decoded) {
        objc_release(this);  // a failed init frees the object
        return nullptr;
    }
    width_ = decoded->width;
    height_ = decoded->height;
    pixels_ = std::move(decoded->rgba);
    scale_ = scale;
    return this;
}

UIImage* UIImage::imp_initWithData(NSData* data) {
    if (data == nullptr) return initWithDecoded({}, 1.0);
    return initWithDecoded(data->span(), 1.0);
}

UIImage* UIImage::imp_initWithContentsOfFile(NSString* path) {
    if (path == nullptr) return initWithDecoded({}, 1.0);
    const std::string name = path->utf8();
    const auto bytes = readFile(name);
    if (!bytes) return initWithDecoded({}, 1.0);
    return initWithDecoded(*bytes, scaleFromName(name));
}

CGSize UIImage::imp_size() const {
    return CGSize{static_cast<CGFloat>(width_) / scale_, static_cast<CGFloat>(height_) / scale_};
}

NSData* UIImagePNGRepresentation(UIImage* image) {
    if (image == nullptr) return nullptr;
    png_image out{};
    out.version = PNG_IMAGE_VERSION;
    out.width = static_cast<png_uint_32>(image->pixelWidth());
    out.height = static_cast<png_uint_32>(image->pixelHeight());
    out.format = PNG_FORMAT_RGBA;
    const auto pixels = image->rgba();
    png_alloc_size_t size = 0;
    // The first call measures, the second writes.
    if (png_image_write_to_memory(&out, nullptr, &size, 0, pixels.data(), 0, nullptr) == 0) {
        return nullptr;
    }
    std::vector<std::uint8_t> bytes(size);
    if (png_image_write_to_memory(&out, bytes.data(), &size, 0, pixels.data(), 0, nullptr) == 0) {
        return nullptr;
    }
    bytes.resize(size);
    return objc::autorelease(NSData::create(std::span<const std::uint8_t>(bytes)).leak());
}
