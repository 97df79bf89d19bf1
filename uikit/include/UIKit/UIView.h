// A rectangle in the view tree: geometry, subviews, a layer, a tag.
//
// A view holds its subviews strongly; its superview is a back reference that
// the superview clears when it lets the view go. Geometry is kept as the
// platform keeps it, a centre and bounds, so that frame and bounds stay
// consistent whichever is set.
#pragma once

#include <UIKit/CALayer.h>
#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIColor.h>
#include <UIKit/UIGraphics.h>
#include <UIKit/UIResponder.h>

#include <objc/class_builder.h>
#include <objc/geometry.h>
#include <objc/options.h>

#include <cstdint>
#include <vector>

class NSArray;
class UIWindow;
class UIViewController;

inline constexpr CGRect CGRectZero{};

// What assistive technologies are told about a view; a bit set.
using UIAccessibilityTraits = std::uint64_t;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitNone = 0;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitButton = 1;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitLink = 1 << 1;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitImage = 1 << 2;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitSelected = 1 << 3;
inline constexpr UIAccessibilityTraits UIAccessibilityTraitStaticText = 1 << 6;

// How a view follows its superview's size changes; a bit set.
enum UIViewAutoresizing : NSUInteger {
    UIViewAutoresizingNone = 0,
    UIViewAutoresizingFlexibleLeftMargin = 1 << 0,
    UIViewAutoresizingFlexibleWidth = 1 << 1,
    UIViewAutoresizingFlexibleRightMargin = 1 << 2,
    UIViewAutoresizingFlexibleTopMargin = 1 << 3,
    UIViewAutoresizingFlexibleHeight = 1 << 4,
    UIViewAutoresizingFlexibleBottomMargin = 1 << 5,
};
OBJC_OPTIONS(UIViewAutoresizing);

enum UILayoutConstraintAxis : NSInteger {
    UILayoutConstraintAxisHorizontal = 0,
    UILayoutConstraintAxisVertical = 1,
};

// An intrinsic size component a view does not have.
inline constexpr CGFloat UIViewNoIntrinsicMetric = -1;
// Targets of systemLayoutSizeFittingSize: as small or as large as possible.
inline constexpr CGSize UILayoutFittingCompressedSize{0, 0};
inline constexpr CGSize UILayoutFittingExpandedSize{10000000, 10000000};

// How a view's content fills its bounds.
enum UIViewContentMode : NSInteger {
    UIViewContentModeScaleToFill = 0,
    UIViewContentModeScaleAspectFit = 1,
    UIViewContentModeScaleAspectFill = 2,
    UIViewContentModeRedraw = 3,
    UIViewContentModeCenter = 4,
};

class PV_EXPORT UIView : public UIResponder {
    OBJC_CLASS(UIView)

    // An owned view with the frame, for C++ callers.
    static objc::Strong<UIView> create(CGRect frame);

    UIView* initWithFrame(CGRect frame) {
        return objc::msgSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    }

    CGRect frame() { return objc::msgSend<CGRect>(this, objc::sel<"frame">()); }
    void setFrame(CGRect frame) { objc::msgSend<void>(this, objc::sel<"setFrame:">(), frame); }
    CGRect bounds() { return objc::msgSend<CGRect>(this, objc::sel<"bounds">()); }
    void setBounds(CGRect bounds) { objc::msgSend<void>(this, objc::sel<"setBounds:">(), bounds); }
    CGPoint center() { return objc::msgSend<CGPoint>(this, objc::sel<"center">()); }
    void setCenter(CGPoint center) { objc::msgSend<void>(this, objc::sel<"setCenter:">(), center); }

    // A snapshot of the subviews, back to front (autoreleased).
    NSArray* subviews() { return objc::msgSend<NSArray*>(this, objc::sel<"subviews">()); }
    UIView* superview() { return objc::msgSend<UIView*>(this, objc::sel<"superview">()); }
    // Moves the view here (in front) from wherever it was. Adding a view to
    // itself raises NSInvalidArgumentException; nil is ignored.
    void addSubview(UIView* view) { objc::msgSend<void>(this, objc::sel<"addSubview:">(), view); }
    // An index past the end appends.
    void insertSubviewAtIndex(UIView* view, NSInteger index) {
        objc::msgSend<void>(this, objc::sel<"insertSubview:atIndex:">(), view, index);
    }
    void bringSubviewToFront(UIView* view) {
        objc::msgSend<void>(this, objc::sel<"bringSubviewToFront:">(), view);
    }
    void removeFromSuperview() { objc::msgSend<void>(this, objc::sel<"removeFromSuperview">()); }
    // The window the view is in (a window answers itself), or nil.
    UIWindow* window() { return objc::msgSend<UIWindow*>(this, objc::sel<"window">()); }
    // Whether `view` is this view or one of its descendants.
    bool isDescendantOfView(UIView* view) {
        return objc::msgSend<bool>(this, objc::sel<"isDescendantOfView:">(), view);
    }

    bool isHidden() { return objc::msgSend<bool>(this, objc::sel<"isHidden">()); }
    void setHidden(bool hidden) { objc::msgSend<void>(this, objc::sel<"setHidden:">(), hidden); }
    NSInteger tag() { return objc::msgSend<NSInteger>(this, objc::sel<"tag">()); }
    void setTag(NSInteger tag) { objc::msgSend<void>(this, objc::sel<"setTag:">(), tag); }
    // This view or the first descendant (depth first) with the tag.
    UIView* viewWithTag(NSInteger tag) {
        return objc::msgSend<UIView*>(this, objc::sel<"viewWithTag:">(), tag);
    }
    CALayer* layer() { return objc::msgSend<CALayer*>(this, objc::sel<"layer">()); }
    UIAccessibilityTraits accessibilityTraits() {
        return objc::msgSend<UIAccessibilityTraits>(this, objc::sel<"accessibilityTraits">());
    }
    void setAccessibilityTraits(UIAccessibilityTraits traits) {
        objc::msgSend<void>(this, objc::sel<"setAccessibilityTraits:">(), traits);
    }

    // Drawing.
    // Nil (the default) shows what lies behind. The layer's background follows.
    UIColor* backgroundColor() {
        return objc::msgSend<UIColor*>(this, objc::sel<"backgroundColor">());
    }
    void setBackgroundColor(UIColor* color) {
        objc::msgSend<void>(this, objc::sel<"setBackgroundColor:">(), color);
    }
    // 0 to 1; the view and its subviews are drawn as one group at this opacity.
    CGFloat alpha() { return objc::msgSend<CGFloat>(this, objc::sel<"alpha">()); }
    void setAlpha(CGFloat alpha) { objc::msgSend<void>(this, objc::sel<"setAlpha:">(), alpha); }
    bool clipsToBounds() { return objc::msgSend<bool>(this, objc::sel<"clipsToBounds">()); }
    void setClipsToBounds(bool clips) {
        objc::msgSend<void>(this, objc::sel<"setClipsToBounds:">(), clips);
    }
    // Unset, the superview's; a view in no superview answers the system blue.
    UIColor* tintColor() { return objc::msgSend<UIColor*>(this, objc::sel<"tintColor">()); }
    void setTintColor(UIColor* color) {
        objc::msgSend<void>(this, objc::sel<"setTintColor:">(), color);
    }
    UIViewContentMode contentMode() {
        return objc::msgSend<UIViewContentMode>(this, objc::sel<"contentMode">());
    }
    void setContentMode(UIViewContentMode mode) {
        objc::msgSend<void>(this, objc::sel<"setContentMode:">(), mode);
    }
    // Draws the view's own content into the current context, in its bounds.
    void drawRect(CGRect rect) { objc::msgSend<void>(this, objc::sel<"drawRect:">(), rect); }
    // Draws the view and its subviews into the current context as if its
    // bounds filled `rect`. Answers false without a current context.
    bool drawViewHierarchyInRect(CGRect rect, bool afterScreenUpdates) {
        return objc::msgSend<bool>(this, objc::sel<"drawViewHierarchyInRect:afterScreenUpdates:">(),
                                   rect, afterScreenUpdates);
    }

    // The subviews without a message, back to front.
    const std::vector<objc::Strong<UIView>>& subviewList() const noexcept { return subviews_; }
    // The controller whose root view this is, or null.
    UIViewController* owningController() const noexcept { return controller_; }

    // Layout: constraints, intrinsic sizes and the layout cycle.
    // The size the view's content wants, or UIViewNoIntrinsicMetric per
    // component; subclasses override it. Under constraints it becomes
    // width/height constraints at the hugging and compression priorities.
    CGSize intrinsicContentSize() {
        return objc::msgSend<CGSize>(this, objc::sel<"intrinsicContentSize">());
    }
    // Lets the superview's next layout ask for the intrinsic size again.
    void invalidateIntrinsicContentSize() {
        objc::msgSend<void>(this, objc::sel<"invalidateIntrinsicContentSize">());
    }
    // The size that suits the view within `size`; the current size by default.
    CGSize sizeThatFits(CGSize size) {
        return objc::msgSend<CGSize>(this, objc::sel<"sizeThatFits:">(), size);
    }
    // Resizes the view to sizeThatFits: of its current size, keeping its origin.
    void sizeToFit() { objc::msgSend<void>(this, objc::sel<"sizeToFit">()); }
    // Places the subviews: solves the constraints held in the subtree.
    // Called by layoutIfNeeded; subclasses override it.
    void layoutSubviews() { objc::msgSend<void>(this, objc::sel<"layoutSubviews">()); }
    void setNeedsLayout() { objc::msgSend<void>(this, objc::sel<"setNeedsLayout">()); }
    // Lays out this view if marked, then its subviews, top-down.
    void layoutIfNeeded() { objc::msgSend<void>(this, objc::sel<"layoutIfNeeded">()); }
    UIViewAutoresizing autoresizingMask() {
        return objc::msgSend<UIViewAutoresizing>(this, objc::sel<"autoresizingMask">());
    }
    void setAutoresizingMask(UIViewAutoresizing mask) {
        objc::msgSend<void>(this, objc::sel<"setAutoresizingMask:">(), mask);
    }
    // YES (the default): the frame, with the autoresizing mask, is what
    // constraints see of this view; NO: constraints place it.
    bool translatesAutoresizingMaskIntoConstraints() {
        return objc::msgSend<bool>(this, objc::sel<"translatesAutoresizingMaskIntoConstraints">());
    }
    void setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
        objc::msgSend<void>(this, objc::sel<"setTranslatesAutoresizingMaskIntoConstraints:">(),
                            translates);
    }
    // The constraints held by this view (autoreleased).
    NSArray* constraints() { return objc::msgSend<NSArray*>(this, objc::sel<"constraints">()); }
    void addConstraint(NSLayoutConstraint* constraint) {
        objc::msgSend<void>(this, objc::sel<"addConstraint:">(), constraint);
    }
    void addConstraints(NSArray* constraints) {
        objc::msgSend<void>(this, objc::sel<"addConstraints:">(), constraints);
    }
    void removeConstraint(NSLayoutConstraint* constraint) {
        objc::msgSend<void>(this, objc::sel<"removeConstraint:">(), constraint);
    }
    void removeConstraints(NSArray* constraints) {
        objc::msgSend<void>(this, objc::sel<"removeConstraints:">(), constraints);
    }
    UILayoutPriority contentHuggingPriorityForAxis(UILayoutConstraintAxis axis) {
        return objc::msgSend<UILayoutPriority>(this, objc::sel<"contentHuggingPriorityForAxis:">(),
                                               axis);
    }
    void setContentHuggingPriority(UILayoutPriority priority, UILayoutConstraintAxis axis) {
        objc::msgSend<void>(this, objc::sel<"setContentHuggingPriority:forAxis:">(), priority,
                            axis);
    }
    UILayoutPriority contentCompressionResistancePriorityForAxis(UILayoutConstraintAxis axis) {
        return objc::msgSend<UILayoutPriority>(
            this, objc::sel<"contentCompressionResistancePriorityForAxis:">(), axis);
    }
    void setContentCompressionResistancePriority(UILayoutPriority priority,
                                                 UILayoutConstraintAxis axis) {
        objc::msgSend<void>(this, objc::sel<"setContentCompressionResistancePriority:forAxis:">(),
                            priority, axis);
    }
    // The smallest (UILayoutFittingCompressedSize), largest
    // (UILayoutFittingExpandedSize) or nearest size to `target` that the
    // constraints and intrinsic sizes of the subtree allow.
    CGSize systemLayoutSizeFittingSize(CGSize target) {
        return objc::msgSend<CGSize>(this, objc::sel<"systemLayoutSizeFittingSize:">(), target);
    }
    // Without messages, for the layout pass.
    const std::vector<objc::Strong<NSLayoutConstraint>>& constraintList() const noexcept {
        return constraints_;
    }
    bool translatesMask() const noexcept { return translatesMask_; }
    UIViewAutoresizing maskBits() const noexcept { return autoresizingMask_; }
    UILayoutPriority hugging(UILayoutConstraintAxis axis) const noexcept {
        return hugging_[axis == UILayoutConstraintAxisVertical];
    }
    UILayoutPriority compressionResistance(UILayoutConstraintAxis axis) const noexcept {
        return compression_[axis == UILayoutConstraintAxisVertical];
    }

    UIView() = default;
    ~UIView() override;

  private:
    friend class UIViewController;

    UIView* imp_init();
    UIView* imp_initWithFrame(CGRect frame);
    CGRect imp_frame() const;
    void imp_setFrame(CGRect frame);
    NSArray* imp_subviews() const;
    UIView* imp_superview() const { return superview_; }
    void imp_addSubview(UIView* view);
    void imp_insertSubviewAtIndex(UIView* view, NSInteger index);
    void imp_bringSubviewToFront(UIView* view);
    void imp_removeFromSuperview();
    UIWindow* imp_window();
    bool imp_isDescendantOfView(UIView* view);
    UIView* imp_viewWithTag(NSInteger tag);
    CALayer* imp_layer();
    UIResponder* imp_nextResponder();

    // Takes the view out of its superview's list without messages.
    void detachFromSuperview();
    void insertAt(UIView* view, std::size_t index);

    CGPoint center_{};
    CGRect bounds_{};
    std::vector<objc::Strong<UIView>> subviews_;
    UIView* superview_ = nullptr;             // not retained: the superview holds us
    UIViewController* controller_ = nullptr;  // not retained: the controller holds us
    bool hidden_ = false;
    NSInteger tag_ = 0;
    UIAccessibilityTraits accessibilityTraits_ = UIAccessibilityTraitNone;
    objc::Strong<CALayer> layer_;

    // Layout: constraints, intrinsic sizes and the layout cycle.
    friend class NSLayoutConstraint;
    static void defineLayout(objc::ClassBuilder<UIView>& b);
    void imp_setBounds(CGRect bounds);
    // Follows a size change: autoresizes the subviews, marks the view.
    void sizeDidChange(CGSize old);
    CGSize imp_intrinsicContentSize() const;
    void imp_invalidateIntrinsicContentSize();
    CGSize imp_sizeThatFits(CGSize size);
    void imp_sizeToFit();
    void imp_layoutSubviews();
    void imp_setNeedsLayout();
    void imp_layoutIfNeeded();
    NSArray* imp_constraints() const;
    void imp_addConstraint(NSLayoutConstraint* constraint);
    void imp_addConstraints(NSArray* constraints);
    void imp_removeConstraint(NSLayoutConstraint* constraint);
    void imp_removeConstraints(NSArray* constraints);
    UILayoutPriority imp_contentHuggingPriorityForAxis(UILayoutConstraintAxis axis) const;
    void imp_setContentHuggingPriority(UILayoutPriority priority, UILayoutConstraintAxis axis);
    UILayoutPriority imp_contentCompressionResistancePriorityForAxis(
        UILayoutConstraintAxis axis) const;
    void imp_setContentCompressionResistancePriority(UILayoutPriority priority,
                                                     UILayoutConstraintAxis axis);
    CGSize imp_systemLayoutSizeFittingSize(CGSize target);
    void imp_setTranslatesAutoresizingMaskIntoConstraints(bool translates);
    // Marks this view, and the ancestors whose layout places it by
    // constraints, for the next layout pass.
    void constraintsChanged();
    // Drops the constraints that tie the subtree of `leaving` to the views
    // it is leaving (this view and its ancestors).
    void dropConstraintsAcross(UIView* leaving);

    std::vector<objc::Strong<NSLayoutConstraint>> constraints_;
    UIViewAutoresizing autoresizingMask_ = UIViewAutoresizingNone;
    UILayoutPriority hugging_[2] = {UILayoutPriorityDefaultLow, UILayoutPriorityDefaultLow};
    UILayoutPriority compression_[2] = {UILayoutPriorityDefaultHigh, UILayoutPriorityDefaultHigh};
    bool translatesMask_ = true;
    bool needsLayout_ = true;

    // Drawing.
    UIColor* imp_backgroundColor() const { return backgroundColor_.get(); }
    void imp_setBackgroundColor(UIColor* color);
    void imp_setAlpha(CGFloat alpha);
    UIColor* imp_tintColor();
    void imp_drawRect(CGRect /*rect*/) {}
    bool imp_drawViewHierarchyInRect(CGRect rect, bool afterScreenUpdates);
    static void defineDrawing(objc::ClassBuilder<UIView>& b);

    objc::Strong<UIColor> backgroundColor_;
    objc::Strong<UIColor> tintColor_;
    CGFloat alpha_ = 1;
    bool clipsToBounds_ = false;
    UIViewContentMode contentMode_ = UIViewContentModeScaleToFill;
};
