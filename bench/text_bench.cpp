// Measuring text with Pango once its font has been used.
#include <benchmark/benchmark.h>

#include <UIKit/UILabel.h>

#include <objc/strong.h>

#include "ratios.h"

BENCH_BOUND("measuring a one-line label", "BM_LabelOneLineSize", 20000);

namespace {

void BM_LabelOneLineSize(benchmark::State& state) {
    objc::AutoreleasePool pool;
    auto label = UILabel::create();
    label->setText(NSSTR("Chats backup and storage"));
    benchmark::DoNotOptimize(label->intrinsicContentSize());  // the font's first use
    for (auto _ : state) benchmark::DoNotOptimize(label->intrinsicContentSize());
}
BENCHMARK(BM_LabelOneLineSize);

}  // namespace
