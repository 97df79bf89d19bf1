// Fonts, attributed strings, measuring with Pango, labels and drawing text.
#include "uikit_fixture.h"

#include <UIKit/UILabel.h>
#include <UIKit/UITableViewCell.h>
#include <UIKit/UITableViewHeaderFooterView.h>
#include <UIKit/text_layout.h>

#include <Foundation/NSDictionary.h>

#include <cairo.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

class TextTest : public UIKitTest {
  protected:
    static CGSize measure(const char* text, CGFloat width = 0, UIFont* font = nullptr) {
        return uikit::measureText(uikit::TextBlock{text, font}, width);
    }
};

constexpr const char* kArabic = "مرحبا بالعالم";  // "hello, world"

TEST_F(TextTest, MeasuresRealText) {
    const CGSize short_ = measure("Settings");
    const CGSize long_ = measure("Settings and privacy");
    EXPECT_GT(long_.width, short_.width);
    EXPECT_DOUBLE_EQ(long_.height, short_.height);

    // Empty text: no width, one line's height.
    const CGSize empty = measure("");
    EXPECT_EQ(empty.width, 0);
    EXPECT_DOUBLE_EQ(empty.height, short_.height);
    EXPECT_NEAR(empty.height, UIFont::systemFontOfSize(17)->lineHeight(), 2);

    // Wrapped at half its width, a paragraph takes about twice the lines.
    const char* paragraph =
        "The quick brown fox jumps over the lazy dog while the settings table measures every "
        "row of text it shows, one line at a time, again and again.";
    const CGSize at300 = measure(paragraph, 300);
    const CGSize at150 = measure(paragraph, 150);
    EXPECT_LE(at300.width, 300);
    EXPECT_LE(at150.width, 150);
    EXPECT_GT(at300.height, short_.height * 2);
    EXPECT_NEAR(at150.height / at300.height, 2.0, 0.5);

    // Arabic letters join: the word is not the sum of its isolated letters.
    const std::string word = "مرحبا";
    double isolated = 0;
    for (std::size_t i = 0; i < word.size(); i += 2) {
        isolated += measure(word.substr(i, 2).c_str()).width;
    }
    EXPECT_GT(measure(word.c_str()).width, 0);
    EXPECT_GT(std::abs(measure(word.c_str()).width - isolated), 1.0);

    // NSString's own methods answer the same measurement.
    auto* font = UIFont::systemFontOfSize(17);
    auto attributes = NSDictionary::create({{NSFontAttributeName, font}});
    const CGSize sized = uikit::sizeWithAttributes(NSSTR("Settings"), attributes);
    EXPECT_DOUBLE_EQ(sized.width, short_.width);
    const CGRect box = uikit::boundingRectWithSize(
        NSString::create(paragraph), CGSizeMake(150, std::numeric_limits<CGFloat>::max()),
        NSStringDrawingUsesLineFragmentOrigin, attributes);
    EXPECT_DOUBLE_EQ(box.size.height, at150.height);
    // Pango is shared between threads: concurrent measuring agrees.
    std::vector<std::thread> threads;
    std::atomic<int> disagreements{0};
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                if (measure(paragraph, 150).height != at150.height) ++disagreements;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(disagreements, 0);
    EXPECT_GT(uikit::sizeWithAttributes(NSSTR("Settings"), nullptr).width, 0);  // 12 points
    EXPECT_LT(uikit::sizeWithAttributes(NSSTR("Settings"), nullptr).width, sized.width);
}

TEST_F(TextTest, FontsAndAttributedStrings) {
    EXPECT_EQ(UIFont::fontWithNameSize(NSSTR("NoSuchFont-Regular"), 17), nullptr);
    EXPECT_EQ(UIFont::fontWithNameSize(NSSTR("DejaVu"), 17), nullptr);  // no best guess
    EXPECT_EQ(UIFont::fontWithNameSize(nullptr, 17), nullptr);
    UIFont* named = UIFont::fontWithNameSize(NSSTR("DejaVu Sans"), 20);
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(named->pointSize(), 20);
    EXPECT_GT(named->ascender(), 0);
    EXPECT_LT(named->descender(), 0);
    EXPECT_DOUBLE_EQ(named->lineHeight(), named->ascender() - named->descender());
    EXPECT_GT(named->lineHeight(), named->pointSize());
    UIFont* bold = UIFont::fontWithNameSize(NSSTR("DejaVuSans-Bold"), 17);
    ASSERT_NE(bold, nullptr);
    EXPECT_GT(measure("Settings", 0, bold).width, measure("Settings").width);
    EXPECT_TRUE(bold->isEqual(UIFont::boldSystemFontOfSize(17)) ||
                bold->fontName()->isEqualToString(NSSTR("DejaVuSans-Bold")));
    UIFont* larger = named->fontWithSize(40);
    EXPECT_EQ(larger->pointSize(), 40);
    EXPECT_NEAR(measure("Settings", 0, larger).width, 2 * measure("Settings", 0, named).width, 1);
    EXPECT_TRUE(UIFont::systemFontOfSize(17)->isEqual(UIFont::systemFontOfSize(17)));

    auto attributes = NSDictionary::create({{NSFontAttributeName, named}});
    auto text = NSAttributedString::create(NSSTR("héllo"), attributes);
    EXPECT_EQ(text->length(), 5u);
    EXPECT_TRUE(text->string()->isEqualToString(NSSTR("héllo")));
    NSRange range{};
    EXPECT_EQ(text->attributeAtIndexEffectiveRange(NSFontAttributeName, 4, &range), named);
    EXPECT_EQ(range.length, 5u);
    EXPECT_THROW(text->attributesAtIndexEffectiveRange(5, nullptr), objc::Exception);
}

TEST_F(TextTest, LabelsMeasureTheirText) {
    auto label = UILabel::create();
    EXPECT_EQ(label->numberOfLines(), 1);
    EXPECT_EQ(label->font()->pointSize(), 17);
    EXPECT_EQ(label->textColor(), nullptr);
    EXPECT_EQ(label->intrinsicContentSize().width, 0);  // no text

    label->setText(NSSTR("Chats and calls, backups, and the storage they take"));
    const CGSize one = label->intrinsicContentSize();
    EXPECT_EQ(one.width, std::ceil(one.width));
    // One line: a narrow width truncates, it does not grow.
    EXPECT_EQ(label->sizeThatFits(CGSizeMake(80, 1000)).height, one.height);
    label->setNumberOfLines(0);
    const CGSize wrapped = label->sizeThatFits(CGSizeMake(80, 1000));
    EXPECT_GT(wrapped.height, 3 * one.height);
    EXPECT_LE(wrapped.width, 80);
    label->setNumberOfLines(2);
    EXPECT_EQ(label->sizeThatFits(CGSizeMake(80, 1000)).height,
              std::ceil(2 * measure("x", 0, label->font()).height));
    label->setFrame(CGRectMake(10, 20, 80, 0));
    label->sizeToFit();
    EXPECT_EQ(label->frame().origin.x, 10);
    EXPECT_EQ(label->frame().size.height, label->sizeThatFits(CGSizeMake(80, 0)).height);

    // A bigger font in attributed text measures bigger; text follows it.
    auto big = NSDictionary::create({{NSFontAttributeName, UIFont::systemFontOfSize(34)}});
    label->setNumberOfLines(1);
    label->setAttributedText(NSAttributedString::create(NSSTR("Chats"), big));
    EXPECT_TRUE(label->text()->isEqualToString(NSSTR("Chats")));
    const CGSize large = label->intrinsicContentSize();
    label->setText(NSSTR("Chats"));
    EXPECT_NEAR(large.width, 2 * label->intrinsicContentSize().width, 2);
    EXPECT_EQ(
        label->attributedText()->attributeAtIndexEffectiveRange(NSFontAttributeName, 0, nullptr),
        label->font());
    label->setFont(UIFont::systemFontOfSize(34));
    EXPECT_NEAR(label->intrinsicContentSize().width, large.width, 1);
    label->setFont(nullptr);
    EXPECT_EQ(label->font()->pointSize(), 17);

    // A table cell's labels are labels.
    auto cell = UITableViewCell::create(UITableViewCellStyleSubtitle);
    cell->textLabel()->setText(NSSTR("Title"));
    cell->detailTextLabel()->setText(NSSTR("Title"));
    EXPECT_GT(cell->textLabel()->intrinsicContentSize().width,
              cell->detailTextLabel()->intrinsicContentSize().width);
    // A footer grows with its wrapped text; without text it takes no room.
    auto footer = UITableViewHeaderFooterView::create(NSSTR("footer"));
    EXPECT_EQ(footer->sizeThatFits(CGSizeMake(320, 0)).height, 0);
    footer->textLabel()->setText(NSSTR("Documents of any type can be sent in a chat."));
    const CGFloat wide = footer->sizeThatFits(CGSizeMake(320, 0)).height;
    EXPECT_GT(wide, 2 * UITableViewHeaderFooterView::kVerticalPadding);
    EXPECT_GT(footer->sizeThatFits(CGSizeMake(120, 0)).height, wide);
}

TEST_F(TextTest, BadTextMeasuresWithoutCrashing) {
    std::string megabyte(1 << 20, 'a');
    for (std::size_t i = 7; i < megabyte.size(); i += 8) megabyte[i] = ' ';
    auto label = UILabel::create();
    label->setText(NSString::create(megabyte));
    EXPECT_GT(label->intrinsicContentSize().width, 1000);
    label->setNumberOfLines(3);
    EXPECT_EQ(label->sizeThatFits(CGSizeMake(300, 0)).height,
              std::ceil(3 * measure("x", 0, label->font()).height));
    // Unlimited: laid out in part, the rest estimated (about 4 words a line).
    label->setNumberOfLines(0);
    const CGFloat lines =
        label->sizeThatFits(CGSizeMake(300, 0)).height / measure("x", 0, label->font()).height;
    EXPECT_GT(lines, (1 << 20) / 8 / 5);
    EXPECT_LT(lines, (1 << 20) / 8 / 2);

    // Lone surrogates reach Pango as U+FFFD; NULs too.
    auto lone = NSString::create(std::u16string{u'a', char16_t(0xD800), u'b', char16_t(0xDC00)});
    auto replaced = NSString::create(u"a\uFFFDb\uFFFD");
    label->setText(lone);
    const CGSize loneSize = label->intrinsicContentSize();
    label->setText(replaced);
    EXPECT_EQ(loneSize.width, label->intrinsicContentSize().width);
    EXPECT_GT(measure(std::string("a\0b", 3).c_str()).width, 0);
    EXPECT_GT(uikit::measureText(uikit::TextBlock{std::string_view("a\0b", 3)}, 0).width,
              measure("ab").width);
    label->setText(nullptr);
    EXPECT_EQ(label->sizeThatFits(CGSizeMake(100, 100)).height, 0);
}

// The columns that hold ink, left and right, of an ARGB image.
std::pair<int, int> inkColumns(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const int width = cairo_image_surface_get_width(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    int left = width, right = -1;
    for (int y = 0; y < cairo_image_surface_get_height(surface); ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x < width; ++x) {
            if ((row[x] >> 24) > 0x40) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
        }
    }
    return {left, right};
}

TEST_F(TextTest, DrawsTextInsideItsRectOnItsSide) {
    using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
    using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;
    const auto inkOf = [](const char* text, NSTextAlignment alignment, CGRect rect) {
        Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 800, 100),
                        &cairo_surface_destroy);
        Context cr(cairo_create(surface.get()), &cairo_destroy);
        cairo_scale(cr.get(), 2, 2);  // a 2x screen
        uikit::TextBlock block{text};
        block.numberOfLines = 1;
        block.alignment = alignment;
        uikit::drawText(cr.get(), rect, block, {0, 0, 0, 1});
        return inkColumns(surface.get());
    };
    const CGRect rect = CGRectMake(20, 5, 300, 40);  // pixels 40..640
    const auto arabic = inkOf(kArabic, NSTextAlignmentNatural, rect);
    EXPECT_GT(arabic.first, 400);
    EXPECT_LE(arabic.second, 640);
    EXPECT_GT(arabic.second, 620);
    const auto latin = inkOf("Settings", NSTextAlignmentNatural, rect);
    EXPECT_GE(latin.first, 40);
    EXPECT_LT(latin.first, 50);
    EXPECT_LT(latin.second, 300);
    EXPECT_LT(inkOf(kArabic, NSTextAlignmentLeft, rect).second, 400);
    // Too long for the rect: truncated inside it, never beyond.
    const auto clipped = inkOf("A very long title that cannot fit in the rectangle given",
                               NSTextAlignmentLeft, CGRectMake(20, 5, 100, 40));
    EXPECT_GE(clipped.first, 40);
    EXPECT_LE(clipped.second, 240);
}

}  // namespace
