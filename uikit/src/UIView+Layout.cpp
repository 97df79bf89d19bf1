// UIView's layout: autoresizing on size changes, the layout cycle, and the
// constraints a view holds.
#include <UIKit/UIView.h>

#include "layout_system.h"

#include <UIKit/UIWindow.h>

#include <Foundation/NSArray.h>
#include <Foundation/dispatch.h>

#include <algorithm>
#include <atomic>

namespace {

// Whether a layout pass of the key window is queued: one per turn of the
// main loop, however many views were marked, as the platform's run loop does.
std::atomic<bool> passQueued{false};

void queueLayoutPass() {
    if (passQueued.exchange(true)) return;
    dispatch_async(dispatch_get_main_queue(), [] {
        passQueued = false;
        if (const auto window = objc::retained(UIWindow::keyWindow())) window->layoutIfNeeded();
    });
}

}  // namespace

void UIView::defineLayout(objc::ClassBuilder<UIView>& b) {
    b.method<&UIView::imp_setBounds>("setBounds:")
        .method<&UIView::imp_intrinsicContentSize>("intrinsicContentSize")
        .method<&UIView::imp_invalidateIntrinsicContentSize>("invalidateIntrinsicContentSize")
        .method<&UIView::imp_sizeThatFits>("sizeThatFits:")
        .method<&UIView::imp_sizeToFit>("sizeToFit")
        .method<&UIView::imp_layoutSubviews>("layoutSubviews")
        .method<&UIView::imp_setNeedsLayout>("setNeedsLayout")
        .method<&UIView::imp_layoutIfNeeded>("layoutIfNeeded")
        .property<&UIView::autoresizingMask_>("autoresizingMask", objc::Nonatomic)
        .property<&UIView::translatesMask_>("translatesAutoresizingMaskIntoConstraints",
                                            objc::Nonatomic)
        .method<&UIView::imp_setTranslatesAutoresizingMaskIntoConstraints>(
            "setTranslatesAutoresizingMaskIntoConstraints:")
        .method<&UIView::imp_constraints>("constraints")
        .method<&UIView::imp_addConstraint>("addConstraint:")
        .method<&UIView::imp_addConstraints>("addConstraints:")
        .method<&UIView::imp_removeConstraint>("removeConstraint:")
        .method<&UIView::imp_removeConstraints>("removeConstraints:")
        .method<&UIView::imp_contentHuggingPriorityForAxis>("contentHuggingPriorityForAxis:")
        .method<&UIView::imp_setContentHuggingPriority>("setContentHuggingPriority:forAxis:")
        .method<&UIView::imp_contentCompressionResistancePriorityForAxis>(
            "contentCompressionResistancePriorityForAxis:")
        .method<&UIView::imp_setContentCompressionResistancePriority>(
            "setContentCompressionResistancePriority:forAxis:")
        .method<&UIView::imp_systemLayoutSizeFittingSize>("systemLayoutSizeFittingSize:");
}

void UIView::imp_setBounds(CGRect bounds) {
    const CGSize old = bounds_.size;
    bounds_ = bounds;
    sizeDidChange(old);
}

void UIView::sizeDidChange(CGSize old) {
    const CGSize now = bounds_.size;
    if (old == now) return;
    setNeedsLayout();
    for (const auto& sub : subviews_) {
        const UIViewAutoresizing mask = sub->autoresizingMask_;
        if (mask == UIViewAutoresizingNone) continue;
        const auto flexible = uikit::LayoutSystem::flexibleParts(mask);
        const CGRect f = sub->frame();
        const auto h = uikit::LayoutSystem::autoresize(f.origin.x, f.size.width, old.width,
                                                       flexible.horizontal);
        const auto v = uikit::LayoutSystem::autoresize(f.origin.y, f.size.height, old.height,
                                                       flexible.vertical);
        sub->setFrame(CGRectMake(h.a0 * now.width + h.b0, v.a0 * now.height + v.b0,
                                 h.a1 * now.width + h.b1, v.a1 * now.height + v.b1));
    }
}

CGSize UIView::imp_intrinsicContentSize() const {
    return CGSizeMake(UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric);
}

void UIView::imp_invalidateIntrinsicContentSize() {
    // The intrinsic size is asked afresh at every pass: a pass is all it takes.
    constraintsChanged();
}

void UIView::constraintsChanged() {
    setNeedsLayout();
    for (UIView* view = this; !view->translatesMask_ && view->superview_ != nullptr;
         view = view->superview_) {
        view->superview_->setNeedsLayout();
    }
}

CGSize UIView::imp_sizeThatFits(CGSize) {
    return bounds_.size;
}

void UIView::imp_sizeToFit() {
    const CGRect frame = this->frame();
    const CGSize size = sizeThatFits(frame.size);
    setFrame(CGRectMake(frame.origin.x, frame.origin.y, size.width, size.height));
}

void UIView::imp_setNeedsLayout() {
    needsLayout_ = true;
    queueLayoutPass();
}

void UIView::imp_layoutSubviews() {
    // Nothing placed by constraints here: frames and autoresizing are all.
    if (constraints_.empty() && std::all_of(subviews_.begin(), subviews_.end(),
                                            [](const auto& v) { return v->translatesMask_; })) {
        return;
    }
    uikit::LayoutSystem system(this, uikit::LayoutSystem::Scope::Layout);
    if (!system.hasConstraints()) return;
    system.solve(bounds_.size, UILayoutPriorityRequired);
    system.applyFrames();
}

void UIView::imp_layoutIfNeeded() {
    if (needsLayout_) {
        needsLayout_ = false;
        layoutSubviews();
    }
    // A snapshot: a layoutSubviews below may change the subviews.
    const std::vector<objc::Strong<UIView>> subviews = subviews_;
    for (const auto& sub : subviews) sub->layoutIfNeeded();
}

void UIView::imp_setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
    if (translatesMask_ == translates) return;
    translatesMask_ = translates;
    if (superview_ != nullptr) superview_->constraintsChanged();
}

NSArray* UIView::imp_constraints() const {
    std::vector<id> list(constraints_.begin(), constraints_.end());
    return objc::autorelease(NSArray::create(std::move(list)).leak());
}

void UIView::imp_addConstraint(NSLayoutConstraint* constraint) {
    if (constraint == nullptr || constraint->owner_ == this) return;
    // Held by one view at a time, as an active constraint is.
    const objc::Strong<NSLayoutConstraint> keep = objc::retained(constraint);
    if (constraint->owner_ != nullptr) constraint->owner_->removeConstraint(constraint);
    constraints_.push_back(keep);
    constraint->owner_ = this;
    constraintsChanged();
}

void UIView::imp_addConstraints(NSArray* constraints) {
    if (constraints == nullptr) return;
    for (id c : *constraints) addConstraint(static_cast<NSLayoutConstraint*>(c));
}

void UIView::imp_removeConstraint(NSLayoutConstraint* constraint) {
    const auto it = std::find_if(constraints_.begin(), constraints_.end(),
                                 [constraint](const auto& c) { return c.get() == constraint; });
    if (it == constraints_.end()) return;
    constraint->owner_ = nullptr;
    constraints_.erase(it);  // may release it: nothing reads it after this
    constraintsChanged();
}

void UIView::imp_removeConstraints(NSArray* constraints) {
    if (constraints == nullptr) return;
    for (id c : *constraints) removeConstraint(static_cast<NSLayoutConstraint*>(c));
}

UILayoutPriority UIView::imp_contentHuggingPriorityForAxis(UILayoutConstraintAxis axis) const {
    return hugging(axis);
}

void UIView::imp_setContentHuggingPriority(UILayoutPriority priority, UILayoutConstraintAxis axis) {
    hugging_[axis == UILayoutConstraintAxisVertical] = priority;
    constraintsChanged();
}

UILayoutPriority UIView::imp_contentCompressionResistancePriorityForAxis(
    UILayoutConstraintAxis axis) const {
    return compressionResistance(axis);
}

void UIView::imp_setContentCompressionResistancePriority(UILayoutPriority priority,
                                                         UILayoutConstraintAxis axis) {
    compression_[axis == UILayoutConstraintAxisVertical] = priority;
    constraintsChanged();
}

CGSize UIView::imp_systemLayoutSizeFittingSize(CGSize target) {
    uikit::LayoutSystem system(this, uikit::LayoutSystem::Scope::Fitting);
    system.solve(target, UILayoutPriorityFittingSizeLevel);
    return system.rootSize();
}

void UIView::dropConstraintsAcross(UIView* leaving) {
    // Constraints tying the leaving subtree to the views it leaves cannot
    // hold any more. Items are compared as addresses, never followed: an
    // unretained item may be gone already.
    std::vector<UIView*> subtree{leaving};
    for (std::size_t i = 0; i < subtree.size(); ++i) {
        for (const auto& sub : subtree[i]->subviews_) subtree.push_back(sub.get());
    }
    std::vector<UIView*> sorted = subtree;
    std::sort(sorted.begin(), sorted.end());
    const auto inside = [&sorted](UIView* item) {
        return std::binary_search(sorted.begin(), sorted.end(), item);
    };
    const auto dropWhere = [](UIView* holder, const auto& crosses) {
        std::vector<NSLayoutConstraint*> drop;
        for (const auto& c : holder->constraints_) {
            if (crosses(c.get())) drop.push_back(c.get());
        }
        for (NSLayoutConstraint* c : drop) holder->removeConstraint(c);
    };
    for (UIView* holder = this; holder != nullptr; holder = holder->superview_) {
        dropWhere(holder,
                  [&](NSLayoutConstraint* c) { return inside(c->first_) || inside(c->second_); });
    }
    for (UIView* holder : subtree) {
        dropWhere(holder, [&](NSLayoutConstraint* c) {
            return (c->first_ != nullptr && !inside(c->first_)) ||
                   (c->second_ != nullptr && !inside(c->second_));
        });
    }
}
