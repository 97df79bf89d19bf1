// How a table looks: sections of 44-point rows; grouped tables on a grey
// background with white sections, plain ones on white. Separators are hairlines
// inset from the left as on the platform; headers and footers are labels.
#include <UIKit/UIFont.h>
#include <UIKit/UITableView.h>
#include <UIKit/device_profile.h>

#include "view_drawing.h"

#include <cairo.h>

#include <algorithm>

namespace {

constexpr CGFloat kRowHeight = 44;
constexpr CGFloat kSeparatorInset = 15;
constexpr uikit::RGBA kGroupedBackground{239.0 / 255, 239.0 / 255, 244.0 / 255, 1};
constexpr uikit::RGBA kSeparator{200.0 / 255, 199.0 / 255, 204.0 / 255, 1};
// Grouped sections: the space above the first one, and a header or
// footer's height with and without a title.
constexpr CGFloat kGroupedTopGap = 17;
constexpr CGFloat kGroupedTitled = 38;
constexpr CGFloat kGroupedUntitled = 18;
constexpr CGFloat kPlainTitled = 28;

void fillRect(cairo_t* cairo, CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
    cairo_rectangle(cairo, x, y, w, h);
    cairo_fill(cairo);
}

}  // namespace

void UITableView::defineDrawing(objc::ClassBuilder<UITableView>& b) {
    b.method<&UITableView::imp_rectForRowAtIndexPath>("rectForRowAtIndexPath:")
        .method<&UITableView::imp_drawRect>("drawRect:");
}

std::vector<UITableView::SectionPlaces> UITableView::sectionPlaces() {
    loadCounts();
    const bool grouped = style_ == UITableViewStyleGrouped;
    std::vector<SectionPlaces> places;
    CGFloat y = grouped ? kGroupedTopGap : 0;
    for (std::size_t section = 0; section < cells_.size(); ++section) {
        const auto index = static_cast<NSInteger>(section);
        SectionPlaces p{};
        p.headerTop = y;
        const bool header = uikit::hasText(headerTitleForSection(index));
        const bool footer = uikit::hasText(footerTitleForSection(index));
        y += grouped ? (header ? kGroupedTitled : kGroupedUntitled) : (header ? kPlainTitled : 0);
        p.rowsTop = y;
        y += kRowHeight * static_cast<CGFloat>(cells_[section].size());
        p.footerTop = y;
        y += grouped ? (footer ? kGroupedTitled : kGroupedUntitled) : (footer ? kPlainTitled : 0);
        p.bottom = y;
        places.push_back(p);
    }
    return places;
}

CGRect UITableView::imp_rectForRowAtIndexPath(NSIndexPath* indexPath) {
    const auto row = rowOf(indexPath);
    if (!row) return CGRectZero;
    const auto places = sectionPlaces();
    return CGRectMake(0, places[row->section].rowsTop + kRowHeight * row->row, bounds().size.width,
                      kRowHeight);
}

void UITableView::imp_drawRect(CGRect rect) {
    CGContextRef context = UIGraphicsGetCurrentContext();
    cairo_t* cairo = uikit::cairoContext(context);
    if (cairo == nullptr) return;
    const bool grouped = style_ == UITableViewStyleGrouped;
    const CGFloat width = bounds().size.width;
    if (!backgroundColor()) {
        if (grouped) {
            uikit::setSourceRGBA(cairo, kGroupedBackground);
        } else {
            cairo_set_source_rgb(cairo, 1, 1, 1);
        }
        fillRect(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    }
    if (dataSource_ == nullptr) return;
    const objc::Strong<UITableView> keep = objc::retained(this);
    const auto places = sectionPlaces();
    // One device pixel, whatever the scale.
    double hairline = 1, unused = 0;
    cairo_device_to_user_distance(cairo, &hairline, &unused);
    hairline = std::abs(hairline) > 0 ? std::abs(hairline) : 0.5;
    // Separators are inset from the side rows start at.
    const bool rightToLeft = uikit::userInterfaceIsRightToLeft();
    for (std::size_t section = 0; section < places.size() && section < cells_.size(); ++section) {
        const auto index = static_cast<NSInteger>(section);
        const SectionPlaces& p = places[section];
        if (p.headerTop > rect.origin.y + rect.size.height) break;
        // Header and footer titles are labels, drawn like any view.
        const auto title = [&](NSString* text, CGFloat top, CGFloat bottom, bool below) {
            if (!uikit::hasText(text)) return;
            auto label = UILabel::create(CGRectMake(kSeparatorInset, below ? top + 7 : top,
                                                    width - 2 * kSeparatorInset, bottom - top - 7));
            label->setText(text);
            label->setNumberOfLines(0);
            // Section titles are smaller and grey, as the platform sets them.
            label->setFont(UIFont::systemFontOfSize(grouped ? 13 : 15));
            if (grouped) label->setTextColor(UIColor::colorWithRGBA(0.427, 0.427, 0.447, 1));
            uikit::drawSubview(context, label.get());
        };
        title(headerTitleForSection(index), p.headerTop, p.rowsTop, false);
        const std::size_t rows = cells_[section].size();
        for (std::size_t row = 0; row < rows; ++row) {
            UITableViewCell* cell = loadCell(Row{index, static_cast<NSInteger>(row)});
            const CGFloat top = p.rowsTop + kRowHeight * static_cast<CGFloat>(row);
            cell->setFrame(CGRectMake(0, top, width, kRowHeight));
            cell->placeSubviews();
            uikit::drawSubview(context, cell);
            // Between rows the separator is inset; grouped sections are
            // closed at the top and the bottom by full-width lines.
            uikit::setSourceRGBA(cairo, kSeparator);
            const bool last = row + 1 == rows;
            const CGFloat inset = grouped && last ? 0 : kSeparatorInset;
            fillRect(cairo, rightToLeft ? 0 : inset, top + kRowHeight - hairline, width - inset,
                     hairline);
            if (grouped && row == 0) fillRect(cairo, 0, top, width, hairline);
        }
        title(footerTitleForSection(index), p.footerTop, p.bottom, true);
    }
}
