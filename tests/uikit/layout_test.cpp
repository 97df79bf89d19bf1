#include "uikit_fixture.h"

#include <Foundation/NSArray.h>

namespace {

using LayoutTest = UIKitTest;

NSLayoutConstraint* relate(UIView* a, NSLayoutAttribute first, NSLayoutRelation relation, UIView* b,
                           NSLayoutAttribute second, CGFloat c = 0, CGFloat multiplier = 1) {
    return NSLayoutConstraint::constraintWithItem(a, first, relation, b, second, multiplier, c);
}
NSLayoutConstraint* equal(UIView* a, NSLayoutAttribute first, UIView* b, NSLayoutAttribute second,
                          CGFloat c = 0) {
    return relate(a, first, NSLayoutRelationEqual, b, second, c);
}
NSLayoutConstraint* size(UIView* a, NSLayoutAttribute attribute, NSLayoutRelation relation,
                         CGFloat c) {
    return relate(a, attribute, relation, nullptr, NSLayoutAttributeNotAnAttribute, c);
}
objc::Strong<UIView> constrained() {
    auto view = UIView::create(CGRectZero);
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    return view;
}
// Pins `view`'s four edges to `to`'s, inset by `inset`, held by `holder`.
void pinEdges(UIView* holder, UIView* view, UIView* to, CGFloat inset = 0) {
    holder->addConstraints(NSArray::create({
        equal(view, NSLayoutAttributeTop, to, NSLayoutAttributeTop, inset),
        equal(view, NSLayoutAttributeLeading, to, NSLayoutAttributeLeading, inset),
        equal(view, NSLayoutAttributeTrailing, to, NSLayoutAttributeTrailing, -inset),
        equal(view, NSLayoutAttributeBottom, to, NSLayoutAttributeBottom, -inset),
    }));
}

TEST_F(LayoutTest, PinnedViewFollowsItsSuperviewAndChangedConstants) {
    auto parent = UIView::create(CGRectMake(0, 0, 200, 100));
    auto child = constrained();
    parent->addSubview(child.get());
    pinEdges(parent.get(), child.get(), parent.get(), 10);
    // In the key window, the main loop's next turn lays out what was marked.
    auto window = UIWindow::create();
    window->makeKeyAndVisible();
    window->addSubview(parent.get());
    drain();
    EXPECT_EQ(child->frame(), CGRectMake(10, 10, 180, 80));
    EXPECT_EQ(parent->constraints()->count(), 4u);

    parent->setFrame(CGRectMake(50, 50, 300, 40));
    parent->layoutIfNeeded();
    EXPECT_EQ(child->frame(), CGRectMake(10, 10, 280, 20));

    // A constant changed after adding takes effect at the next layout.
    auto* top = static_cast<NSLayoutConstraint*>(parent->constraints()->objectAtIndex(0));
    top->setConstant(0);
    parent->layoutIfNeeded();
    EXPECT_EQ(child->frame(), CGRectMake(10, 0, 280, 30));

    // Right to left, leading is the right edge.
    uikit::DeviceProfile arabic = uikit::DeviceProfile::defaultProfile();
    arabic.languages = {"ar"};
    uikit::configureDevice(arabic);
    auto badge = constrained();
    parent->addSubview(badge.get());
    parent->addConstraints(NSArray::create({
        equal(badge.get(), NSLayoutAttributeLeading, parent.get(), NSLayoutAttributeLeading, 20),
        equal(badge.get(), NSLayoutAttributeTop, parent.get(), NSLayoutAttributeTop),
        size(badge.get(), NSLayoutAttributeWidth, NSLayoutRelationEqual, 30),
        size(badge.get(), NSLayoutAttributeHeight, NSLayoutRelationEqual, 30),
    }));
    parent->layoutIfNeeded();
    EXPECT_EQ(badge->frame(), CGRectMake(250, 0, 30, 30));

    // Reordering keeps the constraints; leaving the tree takes the ones
    // that name the view along.
    parent->bringSubviewToFront(child.get());
    EXPECT_EQ(parent->constraints()->count(), 8u);
    child->removeFromSuperview();
    EXPECT_EQ(parent->constraints()->count(), 4u);
}

TEST_F(LayoutTest, InequalitiesCentresPrioritiesAndActivation) {
    auto parent = UIView::create(CGRectMake(0, 0, 300, 300));
    auto box = constrained();
    parent->addSubview(box.get());
    auto* wide = size(box.get(), NSLayoutAttributeWidth, NSLayoutRelationEqual, 200);
    auto* narrow = size(box.get(), NSLayoutAttributeWidth, NSLayoutRelationEqual, 80);
    auto* tall = size(box.get(), NSLayoutAttributeHeight, NSLayoutRelationGreaterThanOrEqual, 400);
    auto* flat = size(box.get(), NSLayoutAttributeHeight, NSLayoutRelationEqual, 0);
    wide->setPriority(250);
    narrow->setPriority(750);
    tall->setPriority(500);
    flat->setPriority(100);
    NSLayoutConstraint::activateConstraints(NSArray::create({
        wide,
        narrow,
        // At most half the parent's height, which is less than asked for.
        relate(box.get(), NSLayoutAttributeHeight, NSLayoutRelationLessThanOrEqual, parent.get(),
               NSLayoutAttributeHeight, 0, 0.5),
        tall,
        flat,
        equal(box.get(), NSLayoutAttributeCenterX, parent.get(), NSLayoutAttributeCenterX),
        equal(box.get(), NSLayoutAttributeCenterY, parent.get(), NSLayoutAttributeCenterY),
    }));
    EXPECT_TRUE(wide->isActive());
    // The nearest common ancestor holds each: a size alone is the box's own.
    EXPECT_EQ(parent->constraints()->count(), 3u);
    EXPECT_EQ(box->constraints()->count(), 4u);
    parent->layoutIfNeeded();
    // The stronger wish wins; the optional minimum gets as near as the
    // required maximum allows, against a weaker wish for nothing.
    EXPECT_EQ(box->frame(), CGRectMake(110, 75, 80, 150));

    narrow->setActive(false);
    EXPECT_EQ(box->constraints()->count(), 3u);
    parent->layoutIfNeeded();
    EXPECT_EQ(box->frame().size.width, 200);

    // Items without a common ancestor cannot be activated.
    auto stranger = UIView::create(CGRectZero);
    EXPECT_ANY_THROW(equal(box.get(), NSLayoutAttributeLeft, stranger.get(), NSLayoutAttributeLeft)
                         ->setActive(true));

    // A constraint kept beyond the view holding it is inactive, not dangling.
    const auto kept = objc::retained(wide);
    parent.reset();
    box.reset();
    EXPECT_FALSE(kept->isActive());
    kept->setConstant(5);
}

TEST_F(LayoutTest, UnsatisfiableRequiredConstraintIsLoggedOnceAndBroken) {
    auto parent = UIView::create(CGRectMake(0, 0, 100, 100));
    auto box = constrained();
    parent->addSubview(box.get());
    parent->addConstraint(size(box.get(), NSLayoutAttributeWidth, NSLayoutRelationEqual, 40));
    parent->addConstraint(size(box.get(), NSLayoutAttributeWidth, NSLayoutRelationEqual, 60));
    testing::internal::CaptureStderr();
    parent->layoutIfNeeded();
    parent->setNeedsLayout();
    parent->layoutIfNeeded();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(box->frame().size.width, 40);
    const auto first = log.find("Unable to simultaneously satisfy constraints");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(log.find("Unable to simultaneously", first + 1), std::string::npos);
    EXPECT_NE(log.find("width == 60"), std::string::npos);
}

TEST_F(LayoutTest, IntrinsicSizesHugAndResistByPriority) {
    auto row = UIView::create(CGRectMake(0, 0, 300, 44));
    auto title = SizedView::create(CGSizeMake(120, 20));
    auto detail = SizedView::create(CGSizeMake(100, 20));
    row->addSubview(title.get());
    row->addSubview(detail.get());
    row->addConstraints(NSArray::create({
        equal(title.get(), NSLayoutAttributeLeft, row.get(), NSLayoutAttributeLeft),
        equal(detail.get(), NSLayoutAttributeLeft, title.get(), NSLayoutAttributeRight),
        equal(detail.get(), NSLayoutAttributeRight, row.get(), NSLayoutAttributeRight),
        equal(title.get(), NSLayoutAttributeTop, row.get(), NSLayoutAttributeTop),
        equal(detail.get(), NSLayoutAttributeTop, row.get(), NSLayoutAttributeTop),
    }));
    // Too much room: the view that hugs less grows.
    detail->setContentHuggingPriority(300, UILayoutConstraintAxisHorizontal);
    row->layoutIfNeeded();
    EXPECT_EQ(title->frame(), CGRectMake(0, 0, 200, 20));
    EXPECT_EQ(detail->frame(), CGRectMake(200, 0, 100, 20));

    // Too little room: the view that resists less is squeezed.
    row->setFrame(CGRectMake(0, 0, 150, 44));
    title->setContentCompressionResistancePriority(751, UILayoutConstraintAxisHorizontal);
    row->layoutIfNeeded();
    EXPECT_EQ(title->frame().size.width, 120);
    EXPECT_EQ(detail->frame(), CGRectMake(120, 0, 30, 20));
}

TEST_F(LayoutTest, CellFitsItsTitleAndExpansionView) {
    // A cell: content view pinned to the edges, a title with an intrinsic
    // size, and an expansion view below it.
    auto cell = UIView::create(CGRectMake(0, 0, 320, 44));
    auto content = constrained();
    auto title = SizedView::create(CGSizeMake(100, 21));
    auto expansion = SizedView::create(CGSizeMake(UIViewNoIntrinsicMetric, 200));
    cell->addSubview(content.get());
    content->addSubview(title.get());
    content->addSubview(expansion.get());
    pinEdges(cell.get(), content.get(), cell.get());
    content->addConstraints(NSArray::create({
        equal(title.get(), NSLayoutAttributeTop, content.get(), NSLayoutAttributeTop, 11),
        equal(title.get(), NSLayoutAttributeLeading, content.get(), NSLayoutAttributeLeading, 15),
        relate(title.get(), NSLayoutAttributeTrailing, NSLayoutRelationLessThanOrEqual,
               content.get(), NSLayoutAttributeTrailing, -15),
        equal(expansion.get(), NSLayoutAttributeTop, title.get(), NSLayoutAttributeBottom, 11),
        equal(expansion.get(), NSLayoutAttributeLeft, content.get(), NSLayoutAttributeLeft),
        equal(expansion.get(), NSLayoutAttributeRight, content.get(), NSLayoutAttributeRight),
        equal(expansion.get(), NSLayoutAttributeBottom, content.get(), NSLayoutAttributeBottom),
    }));
    const CGSize compressed = cell->systemLayoutSizeFittingSize(UILayoutFittingCompressedSize);
    EXPECT_DOUBLE_EQ(compressed.height, 11 + 21 + 11 + 200);
    EXPECT_DOUBLE_EQ(compressed.width, 15 + 100 + 15);
    const CGSize fitted = cell->systemLayoutSizeFittingSize(CGSizeMake(320, 0));
    EXPECT_EQ(fitted, CGSizeMake(320, 243));
    EXPECT_EQ(cell->frame().size, CGSizeMake(320, 44));  // fitting moves nothing

    cell->setFrame(CGRectMake(0, 0, 320, 243));
    cell->layoutIfNeeded();
    EXPECT_EQ(expansion->frame(), CGRectMake(0, 43, 320, 200));
    EXPECT_EQ(title->frame(), CGRectMake(15, 11, 100, 21));

    // A plain view with nothing to fit answers the target it was asked for.
    EXPECT_EQ(UIView::create(CGRectZero)->systemLayoutSizeFittingSize(CGSizeMake(10, 20)),
              CGSizeMake(10, 20));
}

TEST_F(LayoutTest, AutoresizingAndSizeToFit) {
    auto parent = UIView::create(CGRectMake(0, 0, 200, 100));
    auto stretchy = UIView::create(CGRectMake(10, 10, 180, 80));
    stretchy->setAutoresizingMask(UIViewAutoresizingFlexibleWidth |
                                  UIViewAutoresizingFlexibleHeight);
    auto corner = UIView::create(CGRectMake(150, 60, 40, 30));
    corner->setAutoresizingMask(UIViewAutoresizingFlexibleLeftMargin |
                                UIViewAutoresizingFlexibleTopMargin);
    auto fixed = UIView::create(CGRectMake(5, 5, 10, 10));
    parent->addSubview(stretchy.get());
    parent->addSubview(corner.get());
    parent->addSubview(fixed.get());
    parent->setBounds(CGRectMake(0, 0, 300, 150));
    EXPECT_EQ(stretchy->frame(), CGRectMake(10, 10, 280, 130));
    EXPECT_EQ(corner->frame(), CGRectMake(250, 110, 40, 30));
    EXPECT_EQ(fixed->frame(), CGRectMake(5, 5, 10, 10));

    // A constrained sibling sees the autoresized frames.
    auto below = constrained();
    parent->addSubview(below.get());
    parent->addConstraints(NSArray::create({
        equal(below.get(), NSLayoutAttributeTop, stretchy.get(), NSLayoutAttributeBottom),
        equal(below.get(), NSLayoutAttributeLeft, stretchy.get(), NSLayoutAttributeLeft),
        equal(below.get(), NSLayoutAttributeWidth, stretchy.get(), NSLayoutAttributeWidth),
        size(below.get(), NSLayoutAttributeHeight, NSLayoutRelationEqual, 5),
    }));
    parent->layoutIfNeeded();
    EXPECT_EQ(below->frame(), CGRectMake(10, 140, 280, 5));

    // sizeToFit keeps the origin and takes sizeThatFits:.
    EXPECT_EQ(fixed->sizeThatFits(CGSizeMake(99, 99)), CGSizeMake(10, 10));
    auto sized = SizedView::create(CGSizeMake(30, 12));
    sized->setFrame(CGRectMake(7, 8, 1, 1));
    sized->sizeToFit();
    EXPECT_EQ(sized->frame(), CGRectMake(7, 8, 1, 1));  // a view fits its own size
    EXPECT_EQ(sized->intrinsicContentSize(), CGSizeMake(30, 12));
    EXPECT_EQ(UIView::create(CGRectZero)->intrinsicContentSize(),
              CGSizeMake(UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric));
}

}  // namespace
