// Uniform type lookups once the tables are loaded: hash-map reads, no I/O.
#include <benchmark/benchmark.h>

#include <MobileCoreServices/MobileCoreServices.h>

#include <objc/strong.h>

#include "ratios.h"

BENCH_RATIO("UTTypeConformsTo vs std::unordered_map find", "BM_UTTypeConformsTo",
            "BM_UnorderedMapFind", 8.0);
BENCH_BOUND("UTTypeCreatePreferredIdentifierForTag (extension)", "BM_UTTypeIdentifierForExtension",
            1000);
BENCH_BOUND("UTTypeConformsTo (dynamic identifier)", "BM_UTTypeDynamicConformsTo", 3000);

namespace {

void BM_UTTypeConformsTo(benchmark::State& state) {
    auto jpeg = NSString::create("public.jpeg");
    auto data = NSString::create("public.data");
    benchmark::DoNotOptimize(UTTypeConformsTo(jpeg, data));  // the one-time load
    for (auto _ : state) benchmark::DoNotOptimize(UTTypeConformsTo(jpeg, data));
}
BENCHMARK(BM_UTTypeConformsTo);

void BM_UTTypeIdentifierForExtension(benchmark::State& state) {
    auto extension = NSString::create("PDF");
    objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, extension, nullptr));
    for (auto _ : state) {
        auto uti = objc::adopt(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension,
                                                                     extension, nullptr));
        benchmark::DoNotOptimize(uti.get());
    }
}
BENCHMARK(BM_UTTypeIdentifierForExtension);

void BM_UTTypeDynamicConformsTo(benchmark::State& state) {
    // A database-only type: decoded, then up the MIME subclass links.
    auto uti = objc::adopt(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension,
                                                                 NSString::create("kml"), nullptr));
    auto text = NSString::create("public.text");
    for (auto _ : state) benchmark::DoNotOptimize(UTTypeConformsTo(uti, text));
}
BENCHMARK(BM_UTTypeDynamicConformsTo);

}  // namespace
