// A linear relation between two views' attributes:
//   first.attribute RELATION multiplier * second.attribute + constant
// An active constraint is installed on a view (the items' nearest common
// ancestor when activated, or the view it was added to), which holds it
// strongly; the constraint holds its items unretained, as the platform's
// does, and a view that leaves the tree takes the constraints naming it along.
#pragma once

#include <objc/object.h>

#include <objc/geometry.h>
#include <objc/types.h>

class NSArray;
class UIView;

enum NSLayoutAttribute : NSInteger {
    NSLayoutAttributeNotAnAttribute = 0,
    NSLayoutAttributeLeft = 1,
    NSLayoutAttributeRight = 2,
    NSLayoutAttributeTop = 3,
    NSLayoutAttributeBottom = 4,
    NSLayoutAttributeLeading = 5,
    NSLayoutAttributeTrailing = 6,
    NSLayoutAttributeWidth = 7,
    NSLayoutAttributeHeight = 8,
    NSLayoutAttributeCenterX = 9,
    NSLayoutAttributeCenterY = 10,
};

enum NSLayoutRelation : NSInteger {
    NSLayoutRelationLessThanOrEqual = -1,
    NSLayoutRelationEqual = 0,
    NSLayoutRelationGreaterThanOrEqual = 1,
};

using UILayoutPriority = float;
inline constexpr UILayoutPriority UILayoutPriorityRequired = 1000;
inline constexpr UILayoutPriority UILayoutPriorityDefaultHigh = 750;
inline constexpr UILayoutPriority UILayoutPriorityDefaultLow = 250;
inline constexpr UILayoutPriority UILayoutPriorityFittingSizeLevel = 50;

class PV_EXPORT NSLayoutConstraint : public NSObject {
    OBJC_CLASS(NSLayoutConstraint)

    // Autoreleased. Items are views; the second may be nil with the
    // attribute NSLayoutAttributeNotAnAttribute (a constant size). Raises
    // NSInvalidArgumentException for a nil first item, an item that is not a
    // view, or a missing second item where the attribute needs one.
    static NSLayoutConstraint* constraintWithItem(id view1, NSLayoutAttribute attr1,
                                                  NSLayoutRelation relation, id view2,
                                                  NSLayoutAttribute attr2, CGFloat multiplier,
                                                  CGFloat c) {
        return objc::msgSend<NSLayoutConstraint*>(
            objcClass(),
            objc::sel<"constraintWithItem:attribute:relatedBy:toItem:attribute:multiplier:"
                      "constant:">(),
            view1, attr1, relation, view2, attr2, multiplier, c);
    }
    static void activateConstraints(NSArray* constraints) {
        objc::msgSend<void>(objcClass(), objc::sel<"activateConstraints:">(), constraints);
    }
    static void deactivateConstraints(NSArray* constraints) {
        objc::msgSend<void>(objcClass(), objc::sel<"deactivateConstraints:">(), constraints);
    }

    id firstItem() { return objc::msgSend<id>(this, objc::sel<"firstItem">()); }
    id secondItem() { return objc::msgSend<id>(this, objc::sel<"secondItem">()); }
    NSLayoutAttribute firstAttribute() {
        return objc::msgSend<NSLayoutAttribute>(this, objc::sel<"firstAttribute">());
    }
    NSLayoutAttribute secondAttribute() {
        return objc::msgSend<NSLayoutAttribute>(this, objc::sel<"secondAttribute">());
    }
    NSLayoutRelation relation() {
        return objc::msgSend<NSLayoutRelation>(this, objc::sel<"relation">());
    }
    CGFloat multiplier() { return objc::msgSend<CGFloat>(this, objc::sel<"multiplier">()); }
    CGFloat constant() { return objc::msgSend<CGFloat>(this, objc::sel<"constant">()); }
    // Takes effect at the next layout of the view holding the constraint.
    void setConstant(CGFloat c) { objc::msgSend<void>(this, objc::sel<"setConstant:">(), c); }
    UILayoutPriority priority() {
        return objc::msgSend<UILayoutPriority>(this, objc::sel<"priority">());
    }
    void setPriority(UILayoutPriority p) {
        objc::msgSend<void>(this, objc::sel<"setPriority:">(), p);
    }
    bool isActive() { return objc::msgSend<bool>(this, objc::sel<"isActive">()); }
    // Activating installs the constraint on the items' nearest common
    // ancestor; items without one raise NSInvalidArgumentException.
    void setActive(bool active) { objc::msgSend<void>(this, objc::sel<"setActive:">(), active); }

    // Without messages, for the layout pass.
    UIView* firstView() const noexcept { return first_; }
    UIView* secondView() const noexcept { return second_; }
    NSLayoutAttribute firstAttr() const noexcept { return firstAttribute_; }
    NSLayoutAttribute secondAttr() const noexcept { return secondAttribute_; }
    NSLayoutRelation rel() const noexcept { return relation_; }
    CGFloat factor() const noexcept { return multiplier_; }
    CGFloat offset() const noexcept { return constant_; }
    UILayoutPriority strength() const noexcept { return priority_; }
    // The view holding it, or null while inactive.
    UIView* owner() const noexcept { return owner_; }
    // Whether a conflict with it was reported already: reported once.
    bool reported() const noexcept { return reported_; }
    void markReported() noexcept { reported_ = true; }

  private:
    friend class UIView;

    static NSLayoutConstraint* imp_constraintWithItem(Class cls, id view1, NSLayoutAttribute attr1,
                                                      NSLayoutRelation relation, id view2,
                                                      NSLayoutAttribute attr2, CGFloat multiplier,
                                                      CGFloat c);
    static void imp_activateConstraints(Class cls, NSArray* constraints);
    static void imp_deactivateConstraints(Class cls, NSArray* constraints);
    id imp_firstItem() const;
    id imp_secondItem() const;
    void imp_setConstant(CGFloat c);
    void imp_setPriority(UILayoutPriority p);
    bool imp_isActive() const { return owner_ != nullptr; }
    void imp_setActive(bool active);
    void ownerNeedsLayout() const;
    NSString* imp_description();

    UIView* first_ = nullptr;   // not retained, as the platform's
    UIView* second_ = nullptr;  // not retained
    NSLayoutAttribute firstAttribute_ = NSLayoutAttributeNotAnAttribute;
    NSLayoutAttribute secondAttribute_ = NSLayoutAttributeNotAnAttribute;
    NSLayoutRelation relation_ = NSLayoutRelationEqual;
    CGFloat multiplier_ = 1;
    CGFloat constant_ = 0;
    UILayoutPriority priority_ = UILayoutPriorityRequired;
    UIView* owner_ = nullptr;  // not retained: the owner holds us
    bool reported_ = false;
};
