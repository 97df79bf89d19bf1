// How a table cell looks: its subviews' places, its background and the
// standard accessory marks.
#include <UIKit/UITableViewCell.h>
#include <UIKit/device_profile.h>

#include <cairo.h>

#include <algorithm>

namespace {

constexpr CGFloat kMargin = 15;
constexpr CGFloat kImageGap = 15;
constexpr CGFloat kAccessoryGap = 15;
constexpr CGSize kChevron{8, 13};
constexpr CGSize kCheckmark{14, 11};
constexpr uikit::RGBA kChevronGray{199.0 / 255, 199.0 / 255, 204.0 / 255, 1};
constexpr uikit::RGBA kSelectedGray{217.0 / 255, 217.0 / 255, 217.0 / 255, 1};

CGFloat markWidth(UITableViewCellAccessoryType type) {
    switch (type) {
        case UITableViewCellAccessoryDisclosureIndicator:
            return kChevron.width;
        case UITableViewCellAccessoryCheckmark:
            return kCheckmark.width;
        case UITableViewCellAccessoryDetailButton:
        case UITableViewCellAccessoryDetailDisclosureButton:
            return 22;
        default:
            return 0;
    }
}

}  // namespace

void UITableViewCell::defineDrawing(objc::ClassBuilder<UITableViewCell>& b) {
    b.method<&UITableViewCell::imp_drawRect>("drawRect:");
}

void UITableViewCell::placeSubviews() {
    const CGRect bounds = this->bounds();
    const CGFloat height = bounds.size.height;
    CGFloat right = bounds.size.width;
    if (accessoryView_) {
        const CGSize size = accessoryView_->bounds().size;
        right -= kAccessoryGap + size.width;
        accessoryView_->setFrame(
            CGRectMake(right, (height - size.height) / 2, size.width, size.height));
    } else if (const CGFloat mark = markWidth(accessoryType_); mark > 0) {
        right -= kAccessoryGap + mark;
    }
    contentView_->setFrame(CGRectMake(0, 0, std::max<CGFloat>(right, 0), height));
    CGFloat x = kMargin;
    if (imageView_->image() != nullptr) {
        const CGSize size = imageView_->image()->size();
        imageView_->setFrame(CGRectMake(x, (height - size.height) / 2, size.width, size.height));
        x += size.width + kImageGap;
    } else {
        imageView_->setFrame(CGRectZero);
    }
    const CGFloat width = std::max<CGFloat>(right - kMargin - x, 0);
    switch (style_) {
        case UITableViewCellStyleValue1: {
            // The detail as wide as its text at the trailing edge, the title
            // in what is left; a long detail leaves the title half.
            const CGFloat detail = std::min(
                detailTextLabel_->sizeThatFits(CGSizeMake(width, height)).width, width / 2);
            textLabel_->setFrame(CGRectMake(x, 0, width - detail - kImageGap, height));
            detailTextLabel_->setFrame(CGRectMake(x + width - detail, 0, detail, height));
            break;
        }
        case UITableViewCellStyleValue2:
            // A short blue title, then the detail.
            textLabel_->setFrame(CGRectMake(x, 0, width / 3, height));
            detailTextLabel_->setFrame(CGRectMake(x + width / 3, 0, width * 2 / 3, height));
            break;
        case UITableViewCellStyleSubtitle:
            textLabel_->setFrame(CGRectMake(x, 0, width, height * 0.6));
            detailTextLabel_->setFrame(CGRectMake(x, height * 0.55, width, height * 0.4));
            break;
        default:
            textLabel_->setFrame(CGRectMake(x, 0, width, height));
            break;
    }
    // A right-to-left interface places the same frames from the other side.
    if (uikit::userInterfaceIsRightToLeft()) {
        const CGFloat total = bounds.size.width;
        for (UIView* view :
             {static_cast<UIView*>(contentView_.get()), static_cast<UIView*>(imageView_.get()),
              static_cast<UIView*>(textLabel_.get()), static_cast<UIView*>(detailTextLabel_.get()),
              accessoryView_.get()}) {
            if (view == nullptr) continue;
            CGRect frame = view->frame();
            // The labels sit in the content view, which is mirrored itself.
            const CGFloat within = view == contentView_.get() || view == accessoryView_.get()
                                       ? total
                                       : contentView_->bounds().size.width;
            frame.origin.x = within - frame.origin.x - frame.size.width;
            view->setFrame(frame);
        }
    }
}

void UITableViewCell::imp_drawRect(CGRect rect) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr) return;
    // Rows are white unless given a colour; a selected or highlighted row is grey.
    if ((selected_ || highlighted_) && selectionStyle_ != UITableViewCellSelectionStyleNone) {
        uikit::setSourceRGBA(cairo, kSelectedGray);
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
        cairo_fill(cairo);
    } else if (!backgroundColor()) {
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
        cairo_fill(cairo);
    }
    if (accessoryView_) return;
    // Marks sit at the trailing edge: mirrored, they point the other way too.
    cairo_save(cairo);
    if (uikit::userInterfaceIsRightToLeft()) {
        cairo_translate(cairo, 2 * rect.origin.x + rect.size.width, 0);
        cairo_scale(cairo, -1, 1);
    }
    const CGFloat right = rect.origin.x + rect.size.width - kAccessoryGap;
    const CGFloat middle = rect.origin.y + rect.size.height / 2;
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    switch (accessoryType_) {
        case UITableViewCellAccessoryDisclosureIndicator:
            uikit::setSourceRGBA(cairo, kChevronGray);
            cairo_set_line_width(cairo, 2);
            cairo_move_to(cairo, right - kChevron.width, middle - kChevron.height / 2);
            cairo_line_to(cairo, right - 1, middle);
            cairo_line_to(cairo, right - kChevron.width, middle + kChevron.height / 2);
            cairo_stroke(cairo);
            break;
        case UITableViewCellAccessoryCheckmark:
            uikit::setSourceColor(cairo, tintColor()->CGColor());
            cairo_set_line_width(cairo, 2);
            cairo_move_to(cairo, right - kCheckmark.width, middle);
            cairo_line_to(cairo, right - kCheckmark.width * 0.62, middle + kCheckmark.height / 2);
            cairo_line_to(cairo, right, middle - kCheckmark.height / 2);
            cairo_stroke(cairo);
            break;
        case UITableViewCellAccessoryDetailButton:
        case UITableViewCellAccessoryDetailDisclosureButton:
            // The info button: a ring in the tint colour.
            uikit::setSourceColor(cairo, tintColor()->CGColor());
            cairo_set_line_width(cairo, 1);
            cairo_new_sub_path(cairo);
            cairo_arc(cairo, right - 11, middle, 10.5, 0, 6.2832);
            cairo_stroke(cairo);
            break;
        default:
            break;
    }
    cairo_restore(cairo);
}
