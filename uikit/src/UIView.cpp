#include <UIKit/UIView.h>

#include <UIKit/UIViewController.h>
#include <UIKit/UIWindow.h>

#include <Foundation/NSArray.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIView, UIResponder, "UIView")
OBJC_REGISTER_CLASS(UIView)

void UIView::objcDefine(objc::ClassBuilder<UIView>& b) {
    b.method<&UIView::imp_init>("init")
        .method<&UIView::imp_initWithFrame>("initWithFrame:")
        .method<&UIView::imp_frame>("frame")
        .method<&UIView::imp_setFrame>("setFrame:")
        .property<&UIView::bounds_>("bounds", objc::Nonatomic)
        .property<&UIView::center_>("center", objc::Nonatomic)
        .method<&UIView::imp_subviews>("subviews")
        .method<&UIView::imp_superview>("superview")
        .method<&UIView::imp_addSubview>("addSubview:")
        .method<&UIView::imp_insertSubviewAtIndex>("insertSubview:atIndex:")
        .method<&UIView::imp_bringSubviewToFront>("bringSubviewToFront:")
        .method<&UIView::imp_removeFromSuperview>("removeFromSuperview")
        .method<&UIView::imp_window>("window")
        .method<&UIView::imp_isDescendantOfView>("isDescendantOfView:")
        .property<&UIView::hidden_>("hidden", objc::Nonatomic | objc::getter("isHidden"))
        .property<&UIView::tag_>("tag", objc::Nonatomic)
        .method<&UIView::imp_viewWithTag>("viewWithTag:")
        .method<&UIView::imp_layer>("layer")
        .property<&UIView::accessibilityTraits_>("accessibilityTraits", objc::Nonatomic)
        .method<&UIView::imp_nextResponder>("nextResponder");
    defineLayout(b);
    defineDrawing(b);
}

objc::Strong<UIView> UIView::create(CGRect frame) {
    return objc::adopt(objc::alloc<UIView>()->initWithFrame(frame));
}

UIView::~UIView() {
    if (layer_) layer_->setOwningView(nullptr);
    for (const auto& view : subviews_) view->superview_ = nullptr;
    // A constraint kept elsewhere outlives its holder as an inactive one.
    for (const auto& constraint : constraints_) constraint->owner_ = nullptr;
}

UIView* UIView::imp_init() {
    return initWithFrame(CGRectZero);
}

UIView* UIView::imp_initWithFrame(CGRect frame) {
    imp_setFrame(frame);
    return this;
}

CGRect UIView::imp_frame() const {
    const CGSize size = bounds_.size;
    return CGRectMake(center_.x - size.width / 2, center_.y - size.height / 2, size.width,
                      size.height);
}

void UIView::imp_setFrame(CGRect frame) {
    const CGSize old = bounds_.size;
    bounds_.size = frame.size;
    center_ =
        CGPointMake(frame.origin.x + frame.size.width / 2, frame.origin.y + frame.size.height / 2);
    sizeDidChange(old);
}

NSArray* UIView::imp_subviews() const {
    std::vector<id> list(subviews_.begin(), subviews_.end());
    return objc::autorelease(NSArray::create(std::move(list)).leak());
}

void UIView::imp_addSubview(UIView* view) {
    if (view == nullptr) return;
    insertAt(view, static_cast<std::size_t>(-1));  // in front, after any move
}

void UIView::imp_insertSubviewAtIndex(UIView* view, NSInteger index) {
    if (view == nullptr) return;
    insertAt(view, index < 0 ? 0 : static_cast<std::size_t>(index));
}

void UIView::insertAt(UIView* view, std::size_t index) {
    if (view == this) {
        objc::raise(objc::exception_name::InvalidArgument, "Can't add self as subview");
    }
    // A view cannot contain its own ancestor: that would make a cycle.
    for (UIView* up = superview_; up != nullptr; up = up->superview_) {
        if (up == view) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "Can't add a superview as a subview");
        }
    }
    const objc::Strong<UIView> keep = objc::retained(view);
    // Reordering keeps the view's constraints; leaving its superview does not.
    if (view->superview_ != nullptr && view->superview_ != this) {
        view->superview_->dropConstraintsAcross(view);
    }
    view->detachFromSuperview();
    index = std::min(index, subviews_.size());
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), keep);
    view->superview_ = this;
    setNeedsLayout();
}

void UIView::imp_bringSubviewToFront(UIView* view) {
    if (view == nullptr || view->superview_ != this) return;
    insertAt(view, static_cast<std::size_t>(-1));
}

void UIView::imp_removeFromSuperview() {
    // The superview's reference may be the last one: keep the view alive
    // until this method has returned.
    const objc::Strong<UIView> keep = objc::retained(this);
    if (superview_ != nullptr) superview_->dropConstraintsAcross(this);
    detachFromSuperview();
}

void UIView::detachFromSuperview() {
    UIView* const parent = superview_;
    if (parent == nullptr) return;
    parent->setNeedsLayout();
    superview_ = nullptr;
    auto& list = parent->subviews_;
    const auto it =
        std::find_if(list.begin(), list.end(), [this](const auto& v) { return v.get() == this; });
    if (it == list.end()) return;
    // The caller keeps a reference; erasing releases the superview's.
    list.erase(it);
}

UIWindow* UIView::imp_window() {
    for (UIView* view = this; view != nullptr; view = view->superview_) {
        if (objc::isKindOf(view, UIWindow::objcClass())) return static_cast<UIWindow*>(view);
    }
    return nullptr;
}

bool UIView::imp_isDescendantOfView(UIView* view) {
    for (UIView* up = this; up != nullptr; up = up->superview_) {
        if (up == view) return true;
    }
    return false;
}

UIView* UIView::imp_viewWithTag(NSInteger tag) {
    if (tag_ == tag) return this;
    for (const auto& view : subviews_) {
        if (UIView* found = view->viewWithTag(tag)) return found;
    }
    return nullptr;
}

CALayer* UIView::imp_layer() {
    if (!layer_) {
        layer_ = CALayer::create();
        layer_->setOwningView(this);
    }
    return layer_.get();
}

UIResponder* UIView::imp_nextResponder() {
    if (controller_ != nullptr) return controller_;
    return superview_;
}
