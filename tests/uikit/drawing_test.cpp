// Colours, image contexts and views drawn into them, checked at the pixels
// where a fault would show.
#include "uikit_fixture.h"

#include "view_pixels.h"

#include <UIKit/UIColor.h>
#include <UIKit/UIGraphics.h>
#include <UIKit/UILabel.h>
#include <UIKit/UISwitch.h>

#include <objc/runtime.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using testsupport::drawnView;
using testsupport::near;
using testsupport::Pixel;
using testsupport::pixelAt;

using Drawing = UIKitTest;

constexpr Pixel kWhite{255, 255, 255, 255};
constexpr Pixel kBlack{0, 0, 0, 255};
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

objc::Strong<UIView> coloured(CGRect frame, UIColor* colour) {
    auto view = UIView::create(frame);
    view->setBackgroundColor(colour);
    return view;
}

TEST_F(Drawing, ColoursCompareByComponentsAndHandOutRetainedCGColors) {
    CGFloat r = -1, g = -1, b = -1, a = -1;
    ASSERT_TRUE(UIColor::orangeColor()->getRGBA(&r, &g, &b, &a));
    EXPECT_EQ((std::array{r, g, b, a}), (std::array<CGFloat, 4>{1, 0.5, 0, 1}));
    EXPECT_TRUE(UIColor::colorWithHSBA(0, 1, 1, 1)->isEqual(UIColor::redColor()));
    EXPECT_TRUE(UIColor::colorWithHSBA(2.0 / 3, 1, 1, 1)->isEqual(UIColor::blueColor()));
    EXPECT_TRUE(UIColor::colorWithWhite(0.5, 1)->isEqual(UIColor::grayColor()));
    EXPECT_EQ(UIColor::colorWithWhite(0.5, 1)->hash(), UIColor::grayColor()->hash());
    EXPECT_FALSE(UIColor::clearColor()->isEqual(UIColor::blackColor()));

    // The colour outlives the UIColor that made it once retained.
    CGColorRef kept = nullptr;
    {
        objc::AutoreleasePool inner;
        kept = CGColorRetain(UIColor::colorWithRGBA(0.25, 0.5, 0.75, 1)->CGColor());
    }
    ASSERT_EQ(CGColorGetNumberOfComponents(kept), 4u);
    EXPECT_EQ(CGColorGetComponents(kept)[2], 0.75);
    CGColorRelease(kept);
    EXPECT_EQ(CGColorGetNumberOfComponents(UIColor::whiteColor()->CGColor()), 2u);

    Method method = class_getInstanceMethod(UIColor::objcClass(), objc::sel<"CGColor">());
    EXPECT_EQ(std::string(method_getTypeEncoding(method)).substr(0, 11), "^{CGColor=}");
}

TEST_F(Drawing, ImageContextsStackPerThreadAndRefuseBadSizes) {
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
    UIGraphicsEndImageContext();  // never begun: logged, nothing else
    for (const CGSize bad : {CGSize{0, 10}, CGSize{10, -1}, CGSize{-5, -5}}) {
        UIGraphicsBeginImageContextWithOptions(bad, false, 1);
        EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
        EXPECT_EQ(UIGraphicsGetImageFromCurrentImageContext(), nullptr);
    }

    // Scale 0 is the main screen's (2 on the default phone).
    UIGraphicsBeginImageContextWithOptions(CGSize{10, 5}, false, 0);
    CGContextRef outer = UIGraphicsGetCurrentContext();
    ASSERT_NE(outer, nullptr);
    UIGraphicsBeginImageContext(CGSize{3, 3});
    EXPECT_NE(UIGraphicsGetCurrentContext(), outer);
    UIGraphicsEndImageContext();
    EXPECT_EQ(UIGraphicsGetCurrentContext(), outer);
    UIImage* image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), (CGSize{10, 5}));
    EXPECT_EQ(image->scale(), 2);
    EXPECT_EQ(image->pixelWidth(), 20u);
    EXPECT_EQ(UIGraphicsGetCurrentContext(), nullptr);
}

TEST_F(Drawing, ViewsDrawBackgroundsBordersClippingAlphaAndSkipHiddenOnes) {
    auto root = coloured(CGRectMake(0, 0, 100, 100), UIColor::whiteColor());
    // A bordered view: its border in the border colour, its inside its own.
    auto bordered = coloured(CGRectMake(10, 10, 40, 40), UIColor::blueColor());
    bordered->layer()->setBorderWidth(4);
    bordered->layer()->setBorderColor(UIColor::redColor()->CGColor());
    root->addSubview(bordered.get());
    // A clipping view whose red child overflows to the right.
    auto clipper = coloured(CGRectMake(60, 10, 20, 20), UIColor::blueColor());
    clipper->setClipsToBounds(true);
    clipper->addSubview(coloured(CGRectMake(10, 0, 30, 20), UIColor::redColor()).get());
    root->addSubview(clipper.get());
    // Hidden: nothing at all; half transparent: a mix with what is behind.
    auto hidden = coloured(CGRectMake(10, 60, 20, 20), UIColor::redColor());
    hidden->setHidden(true);
    root->addSubview(hidden.get());
    auto faint = coloured(CGRectMake(60, 60, 20, 20), UIColor::blackColor());
    faint->setAlpha(0.5);
    root->addSubview(faint.get());

    const auto image = drawnView(root.get(), true, 2);
    ASSERT_TRUE(image);
    EXPECT_TRUE(near(pixelAt(image.get(), 11, 30), kRed));
    EXPECT_TRUE(near(pixelAt(image.get(), 30, 48.5), kRed));
    EXPECT_TRUE(near(pixelAt(image.get(), 30, 30), kBlue));
    EXPECT_TRUE(near(pixelAt(image.get(), 75, 20), kRed));    // inside the clip
    EXPECT_TRUE(near(pixelAt(image.get(), 85, 20), kWhite));  // clipped away
    EXPECT_TRUE(near(pixelAt(image.get(), 20, 70), kWhite));
    EXPECT_TRUE(near(pixelAt(image.get(), 70, 70), Pixel{128, 128, 128, 255}, 2));

    // A transparent view in an opaque context comes out opaque.
    auto clear = UIView::create(CGRectMake(0, 0, 8, 8));
    const auto opaque = drawnView(clear.get(), true);
    EXPECT_TRUE(near(pixelAt(opaque.get(), 4, 4), kBlack));
    const auto transparent = drawnView(clear.get(), false);
    EXPECT_EQ(pixelAt(transparent.get(), 4, 4)[3], 0);
}

TEST_F(Drawing, SwitchesShowTheirStateInTheirFrameAndTintIsInherited) {
    auto root = coloured(CGRectMake(0, 0, 120, 40), UIColor::whiteColor());
    auto on = UISwitch::create();
    on->setFrame(CGRectMake(4, 4, 0, 0));
    on->setOn(true);
    root->addSubview(on.get());
    auto off = UISwitch::create();
    off->setFrame(CGRectMake(64, 4, 0, 0));
    root->addSubview(off.get());

    const auto image = drawnView(root.get(), true, 2);
    const Pixel green{76, 217, 100, 255};
    // The on track, left of the knob, and nothing green outside the frame.
    EXPECT_TRUE(near(pixelAt(image.get(), 4 + 10, 4 + 15.5), green));
    EXPECT_TRUE(near(pixelAt(image.get(), 2, 20), kWhite));
    EXPECT_TRUE(near(pixelAt(image.get(), 58, 20), kWhite));
    // Off: a white track and knob inside a light grey outline.
    EXPECT_TRUE(near(pixelAt(image.get(), 64 + 40, 4 + 15.5), kWhite));
    const Pixel outline = pixelAt(image.get(), 64 + 25, 4.2);
    EXPECT_LT(outline[0], 250);
    EXPECT_GT(outline[0], 200);

    CGFloat blue = 0;
    on->tintColor()->getRGBA(nullptr, nullptr, &blue, nullptr);
    EXPECT_EQ(blue, 1);
    root->setTintColor(UIColor::redColor());
    EXPECT_TRUE(on->tintColor()->isEqual(UIColor::redColor()));
}

TEST_F(Drawing, ALabelDrawsItsTextInItsColourInsideItsFrameOnly) {
    auto root = coloured(CGRectMake(0, 0, 200, 60), UIColor::whiteColor());
    const CGRect frame = CGRectMake(20, 10, 100, 30);
    auto label = UILabel::create(frame);
    label->setText(NSSTR("WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW"));  // far wider than the frame
    label->setTextColor(UIColor::redColor());
    root->addSubview(label.get());

    const auto image = drawnView(root.get());
    int red = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 200; ++x) {
            const Pixel p = pixelAt(image.get(), x, y);
            const bool inside = x >= 20 && x < 120 && y >= 10 && y < 40;
            if (!inside) {
                ASSERT_TRUE(near(p, kWhite)) << "ink at " << x << "," << y;
            } else if (p[0] > 200 && p[1] < 80 && p[2] < 80) {
                ++red;
            }
        }
    }
    EXPECT_GT(red, 50);
}

}  // namespace
