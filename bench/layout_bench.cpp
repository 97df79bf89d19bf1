// Auto layout: the fitting height of a table cell with an expansion view,
// the question a settings table asks of every row it sizes.
#include <benchmark/benchmark.h>

#include <UIKit/UIKit.h>

#include <Foundation/NSArray.h>

#include "ratios.h"

BENCH_BOUND("solve the constraints of a table cell with an expansion view", "BM_CellFittingHeight",
            20000);

namespace {

// A title with a measured size, as a label reports it.
class BenchTitleView : public UIView {
    OBJC_CLASS(BenchTitleView)

  private:
    CGSize imp_intrinsicContentSize() const { return CGSizeMake(180, 21); }
};

}  // namespace

OBJC_DEFINE_CLASS(BenchTitleView, UIView, "BenchTitleView")

void BenchTitleView::objcDefine(objc::ClassBuilder<BenchTitleView>& b) {
    b.method<&BenchTitleView::imp_intrinsicContentSize>("intrinsicContentSize");
}

namespace {

NSLayoutConstraint* equal(UIView* a, NSLayoutAttribute first, UIView* b, NSLayoutAttribute second,
                          CGFloat c) {
    return NSLayoutConstraint::constraintWithItem(a, first, NSLayoutRelationEqual, b, second, 1, c);
}

void BM_CellFittingHeight(benchmark::State& state) {
    objc::AutoreleasePool pool;
    auto cell = UIView::create(CGRectMake(0, 0, 375, 55));
    auto content = UIView::create(CGRectZero);
    auto title = objc::make<BenchTitleView>();
    auto expansion = UIView::create(CGRectZero);
    for (UIView* view : {content.get(), static_cast<UIView*>(title.get()), expansion.get()}) {
        view->setTranslatesAutoresizingMaskIntoConstraints(false);
    }
    cell->addSubview(content.get());
    content->addSubview(title.get());
    content->addSubview(expansion.get());
    cell->addConstraints(NSArray::create({
        equal(content.get(), NSLayoutAttributeTop, cell.get(), NSLayoutAttributeTop, 0),
        equal(content.get(), NSLayoutAttributeLeading, cell.get(), NSLayoutAttributeLeading, 0),
        equal(content.get(), NSLayoutAttributeTrailing, cell.get(), NSLayoutAttributeTrailing, 0),
        equal(content.get(), NSLayoutAttributeBottom, cell.get(), NSLayoutAttributeBottom, 0),
    }));
    content->addConstraints(NSArray::create({
        equal(title.get(), NSLayoutAttributeTop, content.get(), NSLayoutAttributeTop, 17),
        equal(title.get(), NSLayoutAttributeLeading, content.get(), NSLayoutAttributeLeading, 15),
        NSLayoutConstraint::constraintWithItem(title.get(), NSLayoutAttributeTrailing,
                                               NSLayoutRelationLessThanOrEqual, content.get(),
                                               NSLayoutAttributeTrailing, 1, -15),
        equal(expansion.get(), NSLayoutAttributeTop, title.get(), NSLayoutAttributeBottom, 17),
        equal(expansion.get(), NSLayoutAttributeLeft, content.get(), NSLayoutAttributeLeft, 0),
        equal(expansion.get(), NSLayoutAttributeRight, content.get(), NSLayoutAttributeRight, 0),
        NSLayoutConstraint::constraintWithItem(expansion.get(), NSLayoutAttributeHeight,
                                               NSLayoutRelationEqual, nullptr,
                                               NSLayoutAttributeNotAnAttribute, 1, 200),
        equal(expansion.get(), NSLayoutAttributeBottom, content.get(), NSLayoutAttributeBottom, 0),
    }));
    const CGSize target = CGSizeMake(375, 0);
    if (cell->systemLayoutSizeFittingSize(target).height != 17 + 21 + 17 + 200) {
        state.SkipWithError("wrong fitting height");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(cell->systemLayoutSizeFittingSize(target));
    }
}
BENCHMARK(BM_CellFittingHeight);

}  // namespace
