// PNG decoding into UIImage, against hand-written files (zlib stream and chunk CRCs).
#include <UIKit/UIImage.h>

#include <Foundation/NSData.h>

#include <gtest/gtest.h>

#include "scratch_folder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace {

// 3x2 RGBA: red, green at alpha 128, blue at alpha 0 / three arbitrary colours.
constexpr std::uint8_t kRGBA3x2[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44,
    0x52, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x02, 0x08, 0x06, 0x00, 0x00, 0x00, 0x9d,
    0x74, 0x66, 0x1a, 0x00, 0x00, 0x00, 0x1d, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9c, 0x63, 0xf8,
    0xcf, 0xc0, 0xf0, 0x1f, 0x08, 0x1b, 0x40, 0x14, 0x03, 0x97, 0x88, 0x9c, 0x86, 0x91, 0x8d,
    0x5b, 0xc0, 0x7f, 0x20, 0x00, 0x00, 0x6f, 0x0e, 0x09, 0xe1, 0x21, 0xd9, 0xcc, 0x59, 0x00,
    0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
// 2x1 palette image with a transparency table: (200,100,50,255), (1,2,3,7).
constexpr std::uint8_t kPalette2x1[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44,
    0x52, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x08, 0x03, 0x00, 0x00, 0x00, 0xc3,
    0xfc, 0x8f, 0xb8, 0x00, 0x00, 0x00, 0x06, 0x50, 0x4c, 0x54, 0x45, 0xc8, 0x64, 0x32, 0x01,
    0x02, 0x03, 0xc4, 0xb1, 0x9d, 0xbe, 0x00, 0x00, 0x00, 0x02, 0x74, 0x52, 0x4e, 0x53, 0xff,
    0x07, 0x7b, 0xd3, 0xa5, 0xe9, 0x00, 0x00, 0x00, 0x0b, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9c,
    0x63, 0x60, 0x60, 0x04, 0x00, 0x00, 0x04, 0x00, 0x02, 0xbf, 0x7a, 0x3f, 0x4a, 0x00, 0x00,
    0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
// 1x1 grey level 77.
constexpr std::uint8_t kGray1x1[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48,
    0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x00, 0x00, 0x00,
    0x00, 0x3a, 0x7e, 0x9b, 0x55, 0x00, 0x00, 0x00, 0x0a, 0x49, 0x44, 0x41, 0x54, 0x78,
    0x9c, 0x63, 0xf0, 0x05, 0x00, 0x00, 0x4f, 0x00, 0x4e, 0x69, 0x8b, 0x01, 0x6c, 0x00,
    0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

using Pixel = std::array<std::uint8_t, 4>;

Pixel pixel(UIImage* image, std::size_t x, std::size_t y) {
    const auto p = image->pixelAt(x, y);
    return {p[0], p[1], p[2], p[3]};
}

NSData* dataOf(std::span<const std::uint8_t> bytes) {
    return NSData::dataWithBytesLength(bytes.data(), bytes.size());
}

TEST(ImageDecoding, DecodesEveryColourTypeToStraightRGBA) {
    objc::AutoreleasePool pool;
    UIImage* rgba = UIImage::imageWithData(dataOf(kRGBA3x2));
    ASSERT_NE(rgba, nullptr);
    EXPECT_EQ(rgba->pixelWidth(), 3u);
    EXPECT_EQ(rgba->pixelHeight(), 2u);
    // Rows top to bottom, colours not premultiplied by alpha.
    EXPECT_EQ(pixel(rgba, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixel(rgba, 1, 0), (Pixel{0, 255, 0, 128}));
    EXPECT_EQ(pixel(rgba, 0, 1), (Pixel{10, 20, 30, 40}));
    EXPECT_EQ(pixel(rgba, 2, 1), (Pixel{255, 255, 255, 255}));
    EXPECT_THROW(rgba->pixelAt(3, 0), objc::Exception);

    UIImage* palette = UIImage::imageWithData(dataOf(kPalette2x1));
    ASSERT_NE(palette, nullptr);
    EXPECT_EQ(pixel(palette, 0, 0), (Pixel{200, 100, 50, 255}));
    EXPECT_EQ(pixel(palette, 1, 0), (Pixel{1, 2, 3, 7}));

    UIImage* gray = UIImage::imageWithData(dataOf(kGray1x1));
    ASSERT_NE(gray, nullptr);
    EXPECT_EQ(pixel(gray, 0, 0), (Pixel{77, 77, 77, 255}));
}

TEST(ImageDecoding, AnswersNilForBytesThatAreNotAWholePNG) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(UIImage::imageWithData(nullptr), nullptr);
    const std::string text = "<html>404 not found</html>";
    EXPECT_EQ(UIImage::imageWithData(NSData::dataWithBytesLength(text.data(), text.size())),
              nullptr);

    // Every cut before the image data ends must fail cleanly.
    const std::span<const std::uint8_t> whole(kRGBA3x2);
    const std::size_t endOfData = whole.size() - 12;  // IEND is the last 12 bytes
    for (std::size_t length = 0; length < endOfData; ++length) {
        EXPECT_EQ(UIImage::imageWithData(dataOf(whole.first(length))), nullptr)
            << "cut at " << length;
    }

    // A damaged compressed stream fails its chunk checksum.
    std::vector<std::uint8_t> damaged(whole.begin(), whole.end());
    damaged[45] ^= 0x5a;
    EXPECT_EQ(UIImage::imageWithData(dataOf(damaged)), nullptr);

    // A header claiming huge dimensions (checksum fixed) is refused before any allocation.
    std::vector<std::uint8_t> huge(kGray1x1, kGray1x1 + sizeof kGray1x1);
    huge[16] = huge[20] = 0x00;
    huge[17] = huge[21] = 0x01;  // 65536 x 65536
    std::uint32_t crc = 0xffffffffu;
    for (std::size_t i = 12; i < 29; ++i) {
        crc ^= huge[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    crc ^= 0xffffffffu;
    for (int i = 0; i < 4; ++i) huge[29 + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
    EXPECT_EQ(UIImage::imageWithData(dataOf(huge)), nullptr);
}

TEST(ImageDecoding, EncodesToPNGAndBack) {
    objc::AutoreleasePool pool;
    std::vector<std::uint8_t> rgba;
    for (std::uint8_t i = 0; i < 5 * 3; ++i) {
        rgba.insert(rgba.end(),
                    {i, static_cast<std::uint8_t>(i * 7), 200, static_cast<std::uint8_t>(255 - i)});
    }
    const auto original = UIImage::create(5, 3, rgba);
    NSData* png = UIImagePNGRepresentation(original.get());
    ASSERT_NE(png, nullptr);
    UIImage* back = UIImage::imageWithData(png);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->pixelWidth(), 5u);
    EXPECT_TRUE(std::ranges::equal(back->rgba(), rgba));
    EXPECT_EQ(UIImagePNGRepresentation(nullptr), nullptr);
    EXPECT_THROW(UIImage::create(2, 2, std::vector<std::uint8_t>(15)), objc::Exception);
}

TEST(ImageDecoding, FilesTakeTheirScaleFromTheName) {
    objc::AutoreleasePool pool;
    const testsupport::ScratchFolder folder("uikit-image");
    const auto write = [&](const std::string& name) {
        return NSString::create(
            folder.write(name, {reinterpret_cast<const char*>(kRGBA3x2), sizeof kRGBA3x2}));
    };
    UIImage* doubled = UIImage::imageWithContentsOfFile(write("icon@2x.png").get());
    ASSERT_NE(doubled, nullptr);
    EXPECT_EQ(doubled->size().width, 1.5);  // scale 2
    EXPECT_EQ(UIImage::imageWithContentsOfFile(write("icon.png").get())->scale(), 1.0);
    EXPECT_EQ(
        UIImage::imageWithContentsOfFile(NSString::create((folder / "none.png").string()).get()),
        nullptr);
}

}  // namespace
