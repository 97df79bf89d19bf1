#include <UIKit/text_layout.h>

#include <UIKit/UIFont.h>

#include "font_face.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace uikit {

namespace {

// At most this many bytes are laid out per visible line: a label limited to
// a few lines shows a few hundred characters, and a megabyte of text must
// not cost seconds to measure.
constexpr std::size_t kBytesPerLine = 16 * 1024;
// With no line limit, at most this much is laid out (a thousand lines at a
// phone's width) and the height of the rest is estimated from it: Pango
// takes seconds over a megabyte, and gives up on a paragraph of a few
// hundred kilobytes.
constexpr std::size_t kBytesUnlimited = 32 * 1024;
constexpr const char* kArabicFamily = "Noto Sans Arabic";

// The code point at `i` of valid UTF-8, advancing `i`.
char32_t nextCodePoint(std::string_view s, std::size_t& i) {
    const auto c = static_cast<unsigned char>(s[i]);
    const int length = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
    char32_t cp = length == 1 ? c : c & (0x7F >> length);
    for (int k = 1; k < length && i + k < s.size(); ++k) {
        cp = (cp << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
    }
    i += length;
    return cp;
}

bool isArabicLetter(char32_t c) {
    return (c >= 0x0600 && c <= 0x06FF) || (c >= 0x0750 && c <= 0x077F) ||
           (c >= 0x08A0 && c <= 0x08FF) || (c >= 0xFB50 && c <= 0xFDFF) ||
           (c >= 0xFE70 && c <= 0xFEFF);
}

bool isRightToLeftScript(GUnicodeScript script) {
    switch (script) {
        case G_UNICODE_SCRIPT_ARABIC:
        case G_UNICODE_SCRIPT_HEBREW:
        case G_UNICODE_SCRIPT_SYRIAC:
        case G_UNICODE_SCRIPT_THAANA:
        case G_UNICODE_SCRIPT_NKO:
        case G_UNICODE_SCRIPT_SAMARITAN:
        case G_UNICODE_SCRIPT_MANDAIC:
        case G_UNICODE_SCRIPT_ADLAM:
            return true;
        default:
            return false;
    }
}

struct Prepared {
    std::string text;
    double share = 1;  // of the whole text, when it was cut for length alone
};

// What is laid out: a one-line text stops at its first line break (the
// platform shows the first paragraph), long texts are cut at a character,
// and NULs (which Pango reads as the end) become U+FFFD.
Prepared preparedText(const TextBlock& block) {
    std::string_view text = block.utf8;
    if (block.numberOfLines == 1) {
        std::size_t end = text.find_first_of("\r\n");
        for (const char* separator : {"\u2028", "\u2029"}) {
            end = std::min(end, text.find(separator));
        }
        text = text.substr(0, end);
    }
    Prepared out;
    std::size_t cap = block.numberOfLines > 0
                          ? static_cast<std::size_t>(block.numberOfLines) * kBytesPerLine
                          : kBytesUnlimited;
    if (text.size() > cap) {
        while (cap > 0 && (static_cast<unsigned char>(text[cap]) & 0xC0) == 0x80) --cap;
        if (block.numberOfLines <= 0) out.share = double(cap) / double(text.size());
        text = text.substr(0, cap);
    }
    out.text.reserve(text.size());
    for (const char c : text) {
        if (c == '\0') {
            out.text += "\uFFFD";
        } else {
            out.text.push_back(c);
        }
    }
    return out;
}

// Arabic letters (and the spaces between them) in Noto Sans Arabic: the
// system family has Arabic glyphs of its own, but not the platform's look.
void setArabicFallback(PangoLayout* layout, const std::string& text, const FontFace& face) {
    if (!face.arabicFallback()) {
        pango_layout_set_attributes(layout, nullptr);
        return;
    }
    PangoAttrList* list = nullptr;
    std::size_t runStart = std::string::npos, runEnd = 0;
    const auto flush = [&] {
        if (runStart == std::string::npos) return;
        if (list == nullptr) list = pango_attr_list_new();
        PangoAttribute* family = pango_attr_family_new(kArabicFamily);
        family->start_index = static_cast<guint>(runStart);
        family->end_index = static_cast<guint>(runEnd);
        pango_attr_list_insert(list, family);
        runStart = std::string::npos;
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t at = i;
        const char32_t c = nextCodePoint(text, i);
        if (isArabicLetter(c)) {
            if (runStart == std::string::npos) runStart = at;
            runEnd = i;
        } else if (c != U' ') {
            flush();
        }
    }
    flush();
    pango_layout_set_attributes(layout, list);
    if (list != nullptr) pango_attr_list_unref(list);
}

PangoEllipsizeMode ellipsizeOf(NSLineBreakMode mode) {
    switch (mode) {
        case NSLineBreakByTruncatingHead:
            return PANGO_ELLIPSIZE_START;
        case NSLineBreakByTruncatingMiddle:
            return PANGO_ELLIPSIZE_MIDDLE;
        case NSLineBreakByTruncatingTail:
            return PANGO_ELLIPSIZE_END;
        default:
            return PANGO_ELLIPSIZE_NONE;
    }
}

// Pango flips left and right for a right-to-left paragraph (left means
// "leading"), so an explicit side is swapped back for such text.
PangoAlignment alignmentOf(NSTextAlignment alignment, bool rightToLeft) {
    switch (alignment) {
        case NSTextAlignmentCenter:
            return PANGO_ALIGN_CENTER;
        case NSTextAlignmentLeft:
            return rightToLeft ? PANGO_ALIGN_RIGHT : PANGO_ALIGN_LEFT;
        case NSTextAlignmentRight:
            return rightToLeft ? PANGO_ALIGN_LEFT : PANGO_ALIGN_RIGHT;
        default:
            return PANGO_ALIGN_LEFT;
    }
}

std::shared_ptr<const FontFace> faceOf(UIFont* font) {
    return font == nullptr ? TextEngine::shared().systemFace(17, false) : nullptr;
}

// Sets every property of the (possibly reused) layout. `height` bounds an
// unlimited number of lines when drawing; 0 leaves it open.
void configure(PangoLayout* layout, const std::string& text, const TextBlock& block,
               const FontFace& face, double width, double height) {
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    pango_layout_set_font_description(layout, face.description());
    setArabicFallback(layout, text, face);
    const bool bounded = std::isfinite(width) && width > 0;
    pango_layout_set_width(layout, bounded ? static_cast<int>(width * PANGO_SCALE) : -1);
    pango_layout_set_wrap(layout, block.lineBreakMode == NSLineBreakByCharWrapping
                                      ? PANGO_WRAP_CHAR
                                      : PANGO_WRAP_WORD_CHAR);
    const NSInteger lines = std::max<NSInteger>(block.numberOfLines, 0);
    const bool limited = lines > 0 || height > 0;
    pango_layout_set_ellipsize(
        layout, bounded && limited ? ellipsizeOf(block.lineBreakMode) : PANGO_ELLIPSIZE_NONE);
    pango_layout_set_height(layout, lines > 0    ? -static_cast<int>(lines)
                                    : height > 0 ? static_cast<int>(height * PANGO_SCALE)
                                                 : -1);
    pango_layout_set_alignment(layout, alignmentOf(block.alignment, isRightToLeft(text)));
    pango_layout_set_justify(layout, block.alignment == NSTextAlignmentJustified);
}

// The first `lines` lines (all for 0): their widest logical width and their
// height, in Pango units.
PangoRectangle visibleExtent(PangoLayout* layout, NSInteger lines) {
    PangoRectangle extent{};
    if (lines <= 0 || pango_layout_get_line_count(layout) <= lines) {
        pango_layout_get_extents(layout, nullptr, &extent);
        return extent;
    }
    PangoLayoutIter* iter = pango_layout_get_iter(layout);
    int top = 0, width = 0, bottom = 0;
    for (NSInteger n = 0; n < lines; ++n) {
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(iter, nullptr, &logical);
        if (n == 0) top = logical.y;
        width = std::max(width, logical.width);
        bottom = logical.y + logical.height;
        if (!pango_layout_iter_next_line(iter)) break;
    }
    pango_layout_iter_free(iter);
    return PangoRectangle{0, top, width, bottom - top};
}

}  // namespace

bool isRightToLeft(std::string_view utf8) {
    for (std::size_t i = 0; i < utf8.size();) {
        const GUnicodeScript script = g_unichar_get_script(nextCodePoint(utf8, i));
        if (script == G_UNICODE_SCRIPT_COMMON || script == G_UNICODE_SCRIPT_INHERITED ||
            script == G_UNICODE_SCRIPT_UNKNOWN) {
            continue;
        }
        return isRightToLeftScript(script);
    }
    return false;
}

CGSize measureText(const TextBlock& block, CGFloat width) {
    const Prepared prepared = preparedText(block);
    const std::string& text = prepared.text;
    const std::shared_ptr<const FontFace> system = faceOf(block.font);
    const FontFace& face = system ? *system : block.font->face();
    TextEngine& engine = TextEngine::shared();
    const auto held = engine.lock();
    PangoLayout* layout = engine.measuringLayout();
    TextBlock measured = block;
    measured.alignment = NSTextAlignmentLeft;  // the box, not where lines sit in it
    configure(layout, text, measured, face, width, 0);
    PangoRectangle extent = visibleExtent(layout, block.numberOfLines);
    if (prepared.share < 1) {
        // The rest of a cut text, in whole lines as high as the first.
        PangoRectangle first;
        pango_layout_line_get_extents(pango_layout_get_line_readonly(layout, 0), nullptr, &first);
        const double lines = std::ceil(extent.height / prepared.share / std::max(first.height, 1));
        extent.height = static_cast<int>(
            std::min(lines * first.height, double(std::numeric_limits<int>::max())));
    }
    // The shared layout would otherwise keep a long text alive.
    if (text.size() > kBytesPerLine) pango_layout_set_text(layout, "", 0);
    return CGSizeMake(extent.width / double(PANGO_SCALE), extent.height / double(PANGO_SCALE));
}

void drawText(cairo_t* cr, CGRect rect, const TextBlock& block, TextColor color) {
    if (cr == nullptr || !(rect.size.width > 0) || !(rect.size.height > 0)) return;
    // A cut text draws its first part: no screen shows a thousand lines.
    const std::string text = preparedText(block).text;
    const std::shared_ptr<const FontFace> system = faceOf(block.font);
    const FontFace& face = system ? *system : block.font->face();
    TextEngine& engine = TextEngine::shared();
    const auto held = engine.lock();
    PangoContext* context = engine.drawingContext();
    pango_cairo_update_context(cr, context);
    const GObjectPtr<PangoLayout> layout(pango_layout_new(context));
    configure(layout.get(), text, block, face, rect.size.width,
              block.numberOfLines > 0 ? 0 : rect.size.height);
    const PangoRectangle extent = visibleExtent(layout.get(), block.numberOfLines);
    const double height = extent.height / double(PANGO_SCALE);
    // Centred vertically, as a label places its text; from the top when it
    // does not fit.
    const double top = rect.origin.y + std::max(0.0, (rect.size.height - height) / 2);

    cairo_save(cr);
    cairo_rectangle(cr, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_clip(cr);
    cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
    PangoLayoutIter* iter = pango_layout_get_iter(layout.get());
    const double bottom = rect.origin.y + rect.size.height;
    for (NSInteger n = 0; block.numberOfLines <= 0 || n < block.numberOfLines; ++n) {
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(iter, nullptr, &logical);
        const double lineTop = top + (logical.y - extent.y) / double(PANGO_SCALE);
        if (lineTop >= bottom) break;
        const double baseline =
            top + (pango_layout_iter_get_baseline(iter) - extent.y) / double(PANGO_SCALE);
        cairo_move_to(cr, rect.origin.x + logical.x / double(PANGO_SCALE), baseline);
        pango_cairo_show_layout_line(cr, pango_layout_iter_get_line_readonly(iter));
        if (!pango_layout_iter_next_line(iter)) break;
    }
    pango_layout_iter_free(iter);
    cairo_restore(cr);
}

}  // namespace uikit
