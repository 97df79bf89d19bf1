// A rectangle in the view tree: geometry, subviews, a layer, a tag.
//
// A view holds its subviews strongly; its superview is a back reference that
// the superview clears when it lets the view go. Geometry is kept as the
// platform keeps it, a centre and bounds, so that frame and bounds stay
// consistent whichever is set.
#pragma once

#include <UIKit/CALayer.h>
#include <UIKit/UIColor.h>
#include <UIKit/UIGraphics.h>
#include <UIKit/UIResponder.h>

#include <objc/geometry.h>

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
