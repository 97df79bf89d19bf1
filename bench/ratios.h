// Targets that the benchmark run checks: a ratio of two benchmarks measured in
// the same run, or a bound on one benchmark's time per iteration. A ratio may
// also compare two benchmarks' counters, named "<benchmark>:<counter>".
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Target {
    std::string title;
    std::string measured;
    std::string baseline;  // empty: an absolute bound in nanoseconds
    double limit;
};

std::vector<Target>& targets();

struct RegisterTarget {
    RegisterTarget(std::string title, std::string measured, std::string baseline, double limit) {
        targets().push_back({std::move(title), std::move(measured), std::move(baseline), limit});
    }
};

}  // namespace bench

#define BENCH_CONCAT2(a, b) a##b
#define BENCH_CONCAT(a, b) BENCH_CONCAT2(a, b)
// At most `limit` times the baseline.
#define BENCH_RATIO(title, measured, baseline, limit)                      \
    static const ::bench::RegisterTarget BENCH_CONCAT(kTarget, __LINE__) { \
        title, measured, baseline, limit                                   \
    }
// At most `nanoseconds` per iteration.
#define BENCH_BOUND(title, measured, nanoseconds)                          \
    static const ::bench::RegisterTarget BENCH_CONCAT(kTarget, __LINE__) { \
        title, measured, "", nanoseconds                                   \
    }
