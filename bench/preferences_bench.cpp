// The settings read that every hooked call makes: GetBool creates a setting
// that observes its key, reads the standard user defaults and drops the
// setting again, all inside the call.
#include <benchmark/benchmark.h>

#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/process_environment.h>

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "hooks/preferences.h"
#include "ratios.h"

BENCH_BOUND("GetBool with a fresh observing setting", "BM_GetBool", 200);
// BM_UnorderedMapFind is defined in dictionary_bench.cpp.
BENCH_RATIO("GetBool vs std::unordered_map find", "BM_GetBool", "BM_UnorderedMapFind", 20.0);

namespace {

// Points the standard user defaults at a scratch container while it lives.
class ScratchStandardDefaults {
  public:
    ScratchStandardDefaults() {
        std::string pattern = "/tmp/pv-bench-preferences-XXXXXX";
        home_ = ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
        foundation::configureProcess({home_, home_, {"en"}});
        NSUserDefaults::resetStandardUserDefaults();
    }
    ~ScratchStandardDefaults() {
        NSUserDefaults::resetStandardUserDefaults();
        foundation::configureProcess({});
        std::error_code ignored;
        if (!home_.empty()) std::filesystem::remove_all(home_, ignored);
    }
    ScratchStandardDefaults(const ScratchStandardDefaults&) = delete;
    ScratchStandardDefaults& operator=(const ScratchStandardDefaults&) = delete;

  private:
    std::string home_;
};

void BM_GetBool(benchmark::State& state) {
    const ScratchStandardDefaults scratch;
    const objc::AutoreleasePool pool;
    NSString* key = NSSTR("send_documents_enabled");
    NSUserDefaults::standardUserDefaults()->setObjectForKey(NSNumber::create(1), key);
    for (auto _ : state) {
        benchmark::DoNotOptimize(GetBool(key));
    }
}
BENCHMARK(BM_GetBool);

}  // namespace
