#include <UIKit/UIImage.h>

#include <Foundation/NSData.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <png.h>
#include <zlib.h>

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

namespace {

void appendBytes(png_structp png, png_bytep data, png_size_t length) {
    auto* out = static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + length);
}

void flushNothing(png_structp) {}

// libpng reports errors by longjmp back here: this frame holds nothing that
// needs destroying, so the jump skips no destructor.
bool writePng(png_structp png, png_infop info, std::uint32_t width, std::uint32_t height,
              bool opaque, png_bytepp rows, std::vector<std::uint8_t>* out) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_set_write_fn(png, out, appendBytes, flushNothing);
    png_set_IHDR(png, info, width, height, 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Screens are mostly flat colour: run-length compression after the
    // "sub" filter keeps files small at a fraction of the default's time.
    png_set_compression_level(png, 1);
    png_set_compression_strategy(png, Z_RLE);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, nullptr);
    return true;
}

}  // namespace

NSData* UIImagePNGRepresentation(UIImage* image) {
    if (image == nullptr) return nullptr;
    const auto width = static_cast<std::uint32_t>(image->pixelWidth());
    const auto height = static_cast<std::uint32_t>(image->pixelHeight());
    const auto pixels = image->rgba();
    bool opaque = true;
    for (std::size_t i = 3; i < pixels.size() && opaque; i += 4) opaque = pixels[i] == 255;
    // An opaque image is written as RGB: its alpha bytes are dropped here in
    // one pass, cheaper than libpng's per-row filler transform.
    std::vector<std::uint8_t> rgb;
    if (opaque) {
        rgb.resize(pixels.size() / 4 * 3);
        for (std::size_t from = 0, to = 0; from < pixels.size(); from += 4, to += 3) {
            rgb[to] = pixels[from];
            rgb[to + 1] = pixels[from + 1];
            rgb[to + 2] = pixels[from + 2];
        }
    }
    const std::size_t stride = std::size_t{width} * (opaque ? 3 : 4);
    const std::uint8_t* const base = opaque ? rgb.data() : pixels.data();
    std::vector<png_bytep> rows(height);
    for (std::uint32_t y = 0; y < height; ++y) {
        // libpng only reads the rows it is given to write.
        rows[y] = const_cast<png_bytep>(base + y * stride);
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(std::size_t{width} * height / 8);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (png == nullptr) return nullptr;
    png_infop info = png_create_info_struct(png);
    const bool written =
        info != nullptr && writePng(png, info, width, height, opaque, rows.data(), &bytes);
    png_destroy_write_struct(&png, &info);
    if (!written) return nullptr;
    return objc::autorelease(NSData::create(std::span<const std::uint8_t>(bytes)).leak());
}
