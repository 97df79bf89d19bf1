// The constraints of a view's subtree as one linear system: each view is
// four variables (left, top, width, height, in the root's coordinates), its
// constraints, intrinsic sizes and autoresizing frames are rows of the
// solver. Made for one pass and thrown away: constraints change freely in
// between, and a fresh system of a cell's size solves in microseconds.
#pragma once

#include <UIKit/UIView.h>
#include <UIKit/linear_solver.h>

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

namespace uikit {

class LayoutSystem {
  public:
    enum class Scope {
        // What the root's layout places: views under a framed
        // (translatesAutoresizingMaskIntoConstraints) subview are left to
        // that subview's own layout.
        Layout,
        // Everything under the root, framed subviews following the root's
        // size by their autoresizing masks.
        Fitting,
    };

    LayoutSystem(UIView* root, Scope scope);

    // Whether anything in the scope is placed by constraints.
    bool hasConstraints() const noexcept { return hasConstraints_; }

    // Solves with the root's size held at `size` with the strength.
    void solve(CGSize size, UILayoutPriority strength);
    CGSize rootSize() const;
    // Sets the frames of the views that constraints place.
    void applyFrames();

    // (origin, size) of a component after the superview's size has become
    // S: origin = a0 * S + b0, size = a1 * S + b1, as an autoresizing mask
    // with flexible parts `flexible` (min margin, size, max margin) shares
    // the change out in proportion to their current sizes.
    struct Resize {
        double a0, b0, a1, b1;
    };
    static Resize autoresize(double origin, double size, double superSize,
                             const bool (&flexible)[3]);
    // A mask's flexible parts per axis: left margin, width, right margin;
    // top margin, height, bottom margin.
    struct FlexibleParts {
        bool horizontal[3];
        bool vertical[3];
    };
    static FlexibleParts flexibleParts(UIViewAutoresizing mask);

  private:
    struct Node {
        UIView* view;
        std::size_t parent;  // index into nodes_; the root is its own parent
        bool framed;         // placed by its frame, not by constraints
    };

    void collect(UIView* view, std::size_t parent, Scope scope);
    void addFrameRows(std::size_t index);
    void addIntrinsicRows(std::size_t index);
    void addConstraint(NSLayoutConstraint* constraint);
    // The attribute as terms over the item's variables.
    bool attributeTerms(std::size_t index, NSLayoutAttribute attribute, double scale,
                        std::vector<LinearSolver::Term>& terms);
    bool rightToLeft();
    std::size_t var(std::size_t index, int component) const { return index * 4 + component; }
    CGRect solvedFrame(std::size_t index) const;

    LinearSolver solver_;
    std::vector<Node> nodes_;
    std::unordered_map<const UIView*, std::size_t> indexOf_;
    std::vector<NSLayoutConstraint*> constraints_;
    std::optional<bool> rightToLeft_;
    bool hasConstraints_ = false;
};

}  // namespace uikit
