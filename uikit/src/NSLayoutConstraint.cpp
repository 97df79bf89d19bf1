#include <UIKit/NSLayoutConstraint.h>

#include <UIKit/UIView.h>

#include <Foundation/NSArray.h>

#include <objc/exception.h>
#include <objc/runtime.h>

#include <cstdio>
#include <string>

OBJC_DEFINE_CLASS(NSLayoutConstraint, NSObject, "NSLayoutConstraint")

void NSLayoutConstraint::objcDefine(objc::ClassBuilder<NSLayoutConstraint>& b) {
    b.classMethod<&NSLayoutConstraint::imp_constraintWithItem>(
         "constraintWithItem:attribute:relatedBy:toItem:attribute:multiplier:constant:")
        .classMethod<&NSLayoutConstraint::imp_activateConstraints>("activateConstraints:")
        .classMethod<&NSLayoutConstraint::imp_deactivateConstraints>("deactivateConstraints:")
        .method<&NSLayoutConstraint::imp_firstItem>("firstItem")
        .method<&NSLayoutConstraint::imp_secondItem>("secondItem")
        .property<&NSLayoutConstraint::firstAttribute_>("firstAttribute",
                                                        objc::Readonly | objc::Nonatomic)
        .property<&NSLayoutConstraint::secondAttribute_>("secondAttribute",
                                                         objc::Readonly | objc::Nonatomic)
        .property<&NSLayoutConstraint::relation_>("relation", objc::Readonly | objc::Nonatomic)
        .property<&NSLayoutConstraint::multiplier_>("multiplier", objc::Readonly | objc::Nonatomic)
        .property<&NSLayoutConstraint::constant_>("constant", objc::Nonatomic)
        .method<&NSLayoutConstraint::imp_setConstant>("setConstant:")
        .property<&NSLayoutConstraint::priority_>("priority", objc::Nonatomic)
        .method<&NSLayoutConstraint::imp_setPriority>("setPriority:")
        .method<&NSLayoutConstraint::imp_isActive>("isActive")
        .method<&NSLayoutConstraint::imp_setActive>("setActive:")
        .method<&NSLayoutConstraint::imp_description>("description");
}

namespace {

UIView* viewItem(id item, const char* which) {
    if (item == nullptr) return nullptr;
    if (!objc::isKindOf(item, UIView::objcClass())) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("NSLayoutConstraint: the ") + which + " item is not a view");
    }
    return static_cast<UIView*>(item);
}

const char* attributeName(NSLayoutAttribute attribute) {
    switch (attribute) {
        case NSLayoutAttributeLeft:
            return "left";
        case NSLayoutAttributeRight:
            return "right";
        case NSLayoutAttributeTop:
            return "top";
        case NSLayoutAttributeBottom:
            return "bottom";
        case NSLayoutAttributeLeading:
            return "leading";
        case NSLayoutAttributeTrailing:
            return "trailing";
        case NSLayoutAttributeWidth:
            return "width";
        case NSLayoutAttributeHeight:
            return "height";
        case NSLayoutAttributeCenterX:
            return "centerX";
        case NSLayoutAttributeCenterY:
            return "centerY";
        default:
            return "notAnAttribute";
    }
}

// The nearest view that both are in (either may be null).
UIView* commonAncestor(UIView* a, UIView* b) {
    if (b == nullptr) return a;
    for (UIView* up = a; up != nullptr; up = up->superview()) {
        if (b->isDescendantOfView(up)) return up;
    }
    return nullptr;
}

}  // namespace

NSLayoutConstraint* NSLayoutConstraint::imp_constraintWithItem(Class cls, id view1,
                                                               NSLayoutAttribute attr1,
                                                               NSLayoutRelation relation, id view2,
                                                               NSLayoutAttribute attr2,
                                                               CGFloat multiplier, CGFloat c) {
    UIView* const first = viewItem(view1, "first");
    UIView* const second = viewItem(view2, "second");
    if (first == nullptr || attr1 == NSLayoutAttributeNotAnAttribute) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "NSLayoutConstraint: a constraint needs a first item and attribute");
    }
    const bool size = attr1 == NSLayoutAttributeWidth || attr1 == NSLayoutAttributeHeight;
    const bool constantOnly = attr2 == NSLayoutAttributeNotAnAttribute;
    if ((second == nullptr) != constantOnly || (constantOnly && !size)) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("NSLayoutConstraint: ") + attributeName(attr1) +
                        " needs a second item and attribute; only a size can be a constant");
    }
    auto* self = static_cast<NSLayoutConstraint*>(
        objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">()));
    self->first_ = first;
    self->firstAttribute_ = attr1;
    self->relation_ = relation;
    self->second_ = second;
    self->secondAttribute_ = attr2;
    self->multiplier_ = multiplier;
    self->constant_ = c;
    return objc::autorelease(self);
}

void NSLayoutConstraint::imp_activateConstraints(Class, NSArray* constraints) {
    if (constraints == nullptr) return;
    for (id c : *constraints) static_cast<NSLayoutConstraint*>(c)->setActive(true);
}

void NSLayoutConstraint::imp_deactivateConstraints(Class, NSArray* constraints) {
    if (constraints == nullptr) return;
    for (id c : *constraints) static_cast<NSLayoutConstraint*>(c)->setActive(false);
}

id NSLayoutConstraint::imp_firstItem() const {
    return first_;
}

id NSLayoutConstraint::imp_secondItem() const {
    return second_;
}

void NSLayoutConstraint::ownerNeedsLayout() const {
    if (owner_ != nullptr) owner_->constraintsChanged();
}

void NSLayoutConstraint::imp_setConstant(CGFloat c) {
    if (c == constant_) return;
    constant_ = c;
    ownerNeedsLayout();
}

void NSLayoutConstraint::imp_setPriority(UILayoutPriority p) {
    if (p == priority_) return;
    priority_ = p;
    reported_ = false;  // a changed constraint may conflict anew
    ownerNeedsLayout();
}

void NSLayoutConstraint::imp_setActive(bool active) {
    if (active == (owner_ != nullptr)) return;
    if (!active) {
        owner_->removeConstraint(this);
        return;
    }
    UIView* const holder = commonAncestor(first_, second_);
    if (holder == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "Unable to activate constraint: its items have no common ancestor");
    }
    holder->addConstraint(this);
}

NSString* NSLayoutConstraint::imp_description() {
    const auto item = [](UIView* view, NSLayoutAttribute attribute) {
        char buffer[128];
        std::snprintf(buffer, sizeof buffer, "%s:%p.%s", object_getClassName(view),
                      static_cast<void*>(view), attributeName(attribute));
        return std::string(buffer);
    };
    const char* relation = relation_ == NSLayoutRelationLessThanOrEqual      ? " <= "
                           : relation_ == NSLayoutRelationGreaterThanOrEqual ? " >= "
                                                                             : " == ";
    char buffer[64];
    std::string text = "<NSLayoutConstraint:";
    std::snprintf(buffer, sizeof buffer, "%p ", static_cast<void*>(this));
    text += buffer;
    text += item(first_, firstAttribute_) + relation;
    if (second_ != nullptr) {
        if (multiplier_ != 1) {
            std::snprintf(buffer, sizeof buffer, "%g*", multiplier_);
            text += buffer;
        }
        text += item(second_, secondAttribute_);
        if (constant_ != 0) {
            std::snprintf(buffer, sizeof buffer, " %s %g", constant_ < 0 ? "-" : "+",
                          constant_ < 0 ? -constant_ : constant_);
            text += buffer;
        }
    } else {
        std::snprintf(buffer, sizeof buffer, "%g", constant_);
        text += buffer;
    }
    if (priority_ < UILayoutPriorityRequired) {
        std::snprintf(buffer, sizeof buffer, " @%g", static_cast<double>(priority_));
        text += buffer;
    }
    return NSString::stringWithUTF8String((text + ">").c_str());
}
