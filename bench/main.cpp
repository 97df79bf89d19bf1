// Runs the benchmarks, then prints each target: a ratio against a baseline
// measured in the same run, or a time per iteration, with its limit.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include "ratios.h"

namespace {

class CollectingReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            // CPU nanoseconds per iteration, whatever unit the benchmark prints in:
            // less disturbed than wall time by other work on the machine. A
            // benchmark that asks for real time (I/O, other processes) gets it.
            const bool real = run.run_name.time_type == "real_time";
            nanoseconds_[run.benchmark_name()] =
                (real ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) *
                multiplier(run.time_unit);
            // A counter, as "<benchmark>:<counter>", for targets that compare
            // other measures than time (the disk a file takes, say).
            for (const auto& [name, counter] : run.counters) {
                nanoseconds_[run.benchmark_name() + ":" + name] = counter.value;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    const std::map<std::string, double>& results() const { return nanoseconds_; }

  private:
    static double multiplier(benchmark::TimeUnit unit) {
        switch (unit) {
            case benchmark::kNanosecond:
                return 1.0;
            case benchmark::kMicrosecond:
                return 1e3;
            case benchmark::kMillisecond:
                return 1e6;
            case benchmark::kSecond:
                return 1e9;
        }
        return 1.0;
    }
    std::map<std::string, double> nanoseconds_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CollectingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto& results = reporter.results();
    int missed = 0;
    std::printf("\n%-62s %12s %10s  %s\n", "target", "measured", "limit", "");
    for (const bench::Target& t : bench::targets()) {
        const auto m = results.find(t.measured);
        const auto b = t.baseline.empty() ? results.end() : results.find(t.baseline);
        if (m == results.end() || (!t.baseline.empty() && b == results.end())) {
            std::printf("%-62s %12s %10s  (not run)\n", t.title.c_str(), "-", "-");
            continue;
        }
        const bool isRatio = !t.baseline.empty();
        const double value = isRatio ? m->second / b->second : m->second;
        const bool ok = value <= t.limit;
        missed += ok ? 0 : 1;
        char measured[32];
        char limit[32];
        std::snprintf(measured, sizeof measured, isRatio ? "%.2fx" : "%.1f ns", value);
        std::snprintf(limit, sizeof limit, isRatio ? "%.2fx" : "%.0f ns", t.limit);
        std::printf("%-62s %12s %10s  %s\n", t.title.c_str(), measured, limit,
                    ok ? "ok" : "MISSED");
    }
    return missed == 0 ? 0 : 2;
}
