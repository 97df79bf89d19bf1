#include "layout_system.h"

#include <UIKit/device_profile.h>

#include <Foundation/NSLog.h>

#include <objc/runtime.h>

#include <array>
#include <string>
#include <string_view>

namespace uikit {

namespace {

enum Component { kX = 0, kY = 1, kW = 2, kH = 3 };

double strengthOf(UILayoutPriority priority) {
    return priority >= UILayoutPriorityRequired ? LinearSolver::kRequired
                                                : static_cast<double>(priority);
}

LinearSolver::Relation relationOf(NSLayoutRelation relation) {
    switch (relation) {
        case NSLayoutRelationLessThanOrEqual:
            return LinearSolver::Relation::LessOrEqual;
        case NSLayoutRelationGreaterThanOrEqual:
            return LinearSolver::Relation::GreaterOrEqual;
        default:
            return LinearSolver::Relation::Equal;
    }
}

std::string describe(NSLayoutConstraint* constraint) {
    NSString* text = constraint->description();
    return text != nullptr ? std::string(text->UTF8String()) : std::string();
}

}  // namespace

LayoutSystem::LayoutSystem(UIView* root, Scope scope) {
    nodes_.push_back({root, 0, false});
    indexOf_.emplace(root, 0);
    for (const auto& c : root->constraintList()) constraints_.push_back(c.get());
    for (const auto& sub : root->subviewList()) collect(sub.get(), 0, scope);
    hasConstraints_ = !constraints_.empty();
    for (std::size_t i = 1; i < nodes_.size() && !hasConstraints_; ++i) {
        hasConstraints_ = !nodes_[i].framed;
    }
}

void LayoutSystem::collect(UIView* view, std::size_t parent, Scope scope) {
    const std::size_t index = nodes_.size();
    const bool framed = view->translatesMask();
    nodes_.push_back({view, parent, framed});
    indexOf_.emplace(view, index);
    if (framed && scope == Scope::Layout) return;
    for (const auto& c : view->constraintList()) constraints_.push_back(c.get());
    for (const auto& sub : view->subviewList()) collect(sub.get(), index, scope);
}

void LayoutSystem::solve(CGSize size, UILayoutPriority strength) {
    for (std::size_t i = 0; i < nodes_.size() * 4; ++i) solver_.addVariable();
    using Rel = LinearSolver::Relation;
    const double required = LinearSolver::kRequired;
    const auto fix = [&](std::size_t variable, double value, double s) {
        const std::array<LinearSolver::Term, 1> terms{{{variable, 1.0}}};
        (void)solver_.addConstraint(terms, -value, Rel::Equal, s);
    };
    fix(var(0, kX), 0, required);
    fix(var(0, kY), 0, required);
    fix(var(0, kW), size.width, strengthOf(strength));
    fix(var(0, kH), size.height, strengthOf(strength));
    if (strength < UILayoutPriorityRequired) addIntrinsicRows(0);
    for (std::size_t i = 1; i < nodes_.size(); ++i) {
        if (nodes_[i].framed) {
            addFrameRows(i);
        } else {
            addIntrinsicRows(i);
        }
    }
    for (NSLayoutConstraint* c : constraints_) addConstraint(c);
}

LayoutSystem::Resize LayoutSystem::autoresize(double origin, double size, double superSize,
                                              const bool (&flexible)[3]) {
    const std::array<double, 3> parts{origin, size, superSize - origin - size};
    std::array<bool, 3> flex{flexible[0], flexible[1], flexible[2]};
    // Nothing flexible: the far margin takes the change.
    if (!flex[0] && !flex[1] && !flex[2]) flex[2] = true;
    double fixedSum = 0;
    double flexibleSum = 0;
    int flexibleCount = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        if (flex[i]) {
            flexibleSum += parts[i];
            ++flexibleCount;
        } else {
            fixedSum += parts[i];
        }
    }
    // part = a * S + b for each flexible part; fixed parts keep their size.
    std::array<double, 3> a{};
    std::array<double, 3> b{};
    for (std::size_t i = 0; i < 3; ++i) {
        if (!flex[i]) {
            b[i] = parts[i];
        } else if (flexibleSum > 0) {
            a[i] = parts[i] / flexibleSum;
            b[i] = -fixedSum * parts[i] / flexibleSum;
        } else {
            a[i] = 1.0 / flexibleCount;
            b[i] = -fixedSum / flexibleCount;
        }
    }
    return {a[0], b[0], a[1], b[1]};
}

LayoutSystem::FlexibleParts LayoutSystem::flexibleParts(UIViewAutoresizing mask) {
    const auto has = [mask](UIViewAutoresizing bit) { return objc::contains(mask, bit); };
    return {{has(UIViewAutoresizingFlexibleLeftMargin), has(UIViewAutoresizingFlexibleWidth),
             has(UIViewAutoresizingFlexibleRightMargin)},
            {has(UIViewAutoresizingFlexibleTopMargin), has(UIViewAutoresizingFlexibleHeight),
             has(UIViewAutoresizingFlexibleBottomMargin)}};
}

void LayoutSystem::addFrameRows(std::size_t index) {
    UIView* const view = nodes_[index].view;
    const std::size_t parent = nodes_[index].parent;
    const CGRect frame = view->frame();
    const CGSize superSize = nodes_[parent].view->bounds().size;
    const FlexibleParts flexible = flexibleParts(view->maskBits());
    const auto axis = [&](Component position, Component extent, double origin, double size,
                          double superExtent, const bool(&flexible)[3]) {
        const Resize r = autoresize(origin, size, superExtent, flexible);
        const std::size_t s = var(parent, extent);
        const std::array<LinearSolver::Term, 3> place{
            {{var(index, position), 1.0}, {var(parent, position), -1.0}, {s, -r.a0}}};
        (void)solver_.addConstraint(place, -r.b0, LinearSolver::Relation::Equal,
                                    LinearSolver::kRequired);
        const std::array<LinearSolver::Term, 2> length{{{var(index, extent), 1.0}, {s, -r.a1}}};
        (void)solver_.addConstraint(length, -r.b1, LinearSolver::Relation::Equal,
                                    LinearSolver::kRequired);
    };
    axis(kX, kW, frame.origin.x, frame.size.width, superSize.width, flexible.horizontal);
    axis(kY, kH, frame.origin.y, frame.size.height, superSize.height, flexible.vertical);
}

// An intrinsic size component becomes two optional constraints: not larger
// (hugging) and not smaller (compression resistance).
void LayoutSystem::addIntrinsicRows(std::size_t index) {
    UIView* const view = nodes_[index].view;
    const CGSize intrinsic = view->intrinsicContentSize();
    const auto add = [&](Component c, double value, UILayoutConstraintAxis axis) {
        if (value < 0) return;  // UIViewNoIntrinsicMetric
        const std::array<LinearSolver::Term, 1> terms{{{var(index, c), 1.0}}};
        (void)solver_.addConstraint(terms, -value, LinearSolver::Relation::LessOrEqual,
                                    strengthOf(view->hugging(axis)));
        (void)solver_.addConstraint(terms, -value, LinearSolver::Relation::GreaterOrEqual,
                                    strengthOf(view->compressionResistance(axis)));
    };
    add(kW, intrinsic.width, UILayoutConstraintAxisHorizontal);
    add(kH, intrinsic.height, UILayoutConstraintAxisVertical);
}

bool LayoutSystem::rightToLeft() {
    if (!rightToLeft_) rightToLeft_ = userInterfaceIsRightToLeft();
    return *rightToLeft_;
}

bool LayoutSystem::attributeTerms(std::size_t index, NSLayoutAttribute attribute, double scale,
                                  std::vector<LinearSolver::Term>& terms) {
    const auto put = [&](Component c, double k) { terms.push_back({var(index, c), k * scale}); };
    switch (attribute) {
        case NSLayoutAttributeLeft:
            put(kX, 1);
            return true;
        case NSLayoutAttributeRight:
            put(kX, 1);
            put(kW, 1);
            return true;
        case NSLayoutAttributeTop:
            put(kY, 1);
            return true;
        case NSLayoutAttributeBottom:
            put(kY, 1);
            put(kH, 1);
            return true;
        case NSLayoutAttributeWidth:
            put(kW, 1);
            return true;
        case NSLayoutAttributeHeight:
            put(kH, 1);
            return true;
        case NSLayoutAttributeCenterX:
            put(kX, 1);
            put(kW, 0.5);
            return true;
        case NSLayoutAttributeCenterY:
            put(kY, 1);
            put(kH, 0.5);
            return true;
        // Right to left, leading and trailing run along a mirrored axis, so
        // that a positive constant still moves inwards from the leading edge.
        case NSLayoutAttributeLeading:
            if (rightToLeft()) {
                put(kX, -1);
                put(kW, -1);
            } else {
                put(kX, 1);
            }
            return true;
        case NSLayoutAttributeTrailing:
            if (rightToLeft()) {
                put(kX, -1);
            } else {
                put(kX, 1);
                put(kW, 1);
            }
            return true;
        default:
            return false;
    }
}

void LayoutSystem::addConstraint(NSLayoutConstraint* constraint) {
    const UILayoutPriority priority = constraint->strength();
    if (!(priority > 0)) return;
    const auto first = indexOf_.find(constraint->firstView());
    if (first == indexOf_.end()) return;  // an item outside this pass
    std::vector<LinearSolver::Term> terms;
    terms.reserve(6);
    if (!attributeTerms(first->second, constraint->firstAttr(), 1.0, terms)) return;
    if (constraint->secondView() != nullptr &&
        constraint->secondAttr() != NSLayoutAttributeNotAnAttribute) {
        const auto second = indexOf_.find(constraint->secondView());
        if (second == indexOf_.end()) return;
        if (!attributeTerms(second->second, constraint->secondAttr(), -constraint->factor(),
                            terms)) {
            return;
        }
    }
    const auto added = solver_.addConstraint(terms, -constraint->offset(),
                                             relationOf(constraint->rel()), strengthOf(priority));
    if (!added && !constraint->reported()) {
        constraint->markReported();
        objc::detail::logMessage(
            "Unable to simultaneously satisfy constraints.\n"
            "Will attempt to recover by breaking constraint \n" +
            describe(constraint));
    }
}

CGRect LayoutSystem::solvedFrame(std::size_t index) const {
    const std::size_t parent = nodes_[index].parent;
    const auto at = [&](std::size_t i, Component c) { return solver_.value(var(i, c)); };
    if (index == 0) return CGRectMake(0, 0, at(0, kW), at(0, kH));
    return CGRectMake(at(index, kX) - at(parent, kX), at(index, kY) - at(parent, kY), at(index, kW),
                      at(index, kH));
}

CGSize LayoutSystem::rootSize() const {
    return solvedFrame(0).size;
}

void LayoutSystem::applyFrames() {
    for (std::size_t i = 1; i < nodes_.size(); ++i) {
        if (nodes_[i].framed) continue;
        const CGRect frame = solvedFrame(i);
        if (!(frame == nodes_[i].view->frame())) nodes_[i].view->setFrame(frame);
    }
}

}  // namespace uikit
