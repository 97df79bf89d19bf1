// User defaults on the paths the library takes on every settings read and
// write: a read, a read through a short-lived observer, a write that tells an
// observer (the disk write happens later, on the writer thread).
#include <benchmark/benchmark.h>

#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "ratios.h"

// BM_UnorderedMapFind is defined in dictionary_bench.cpp.
BENCH_RATIO("NSUserDefaults objectForKey: vs std::unordered_map find", "BM_DefaultsObjectForKey",
            "BM_UnorderedMapFind", 3.0);
BENCH_BOUND("NSUserDefaults observe + objectForKey: + unobserve", "BM_DefaultsObserveReadUnobserve",
            150);
BENCH_BOUND("NSUserDefaults setObject:forKey: with one observer",
            "BM_DefaultsSetObjectWithObserver", 1000);

namespace {

// Observes and does nothing, as a settings cell that only needs to be told.
class QuietObserver : public NSObject {
    OBJC_CLASS(QuietObserver)

  private:
    void imp_observe(NSString*, id, NSDictionary*, void*) {}
};

}  // namespace

OBJC_DEFINE_CLASS(QuietObserver, NSObject, "BenchQuietObserver")
void QuietObserver::objcDefine(objc::ClassBuilder<QuietObserver>& b) {
    b.method<&QuietObserver::imp_observe>("observeValueForKeyPath:ofObject:change:context:");
}

namespace {

constexpr int kKeys = 100;
constexpr int kDrainEvery = 256;

// A folder for the defaults file, removed afterwards.
struct ScratchFolder {
    std::string path;
    ScratchFolder() {
        std::string pattern = "/tmp/pv-bench-XXXXXX";
        path = ::mkdtemp(pattern.data()) != nullptr ? pattern : "/tmp";
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (path != "/tmp") std::filesystem::remove_all(path, ignored);
    }
};

objc::Strong<NSUserDefaults> filledDefaults(const std::string& file) {
    auto defaults = NSUserDefaults::create(file);
    objc::AutoreleasePool pool;
    for (int i = 0; i < kKeys; ++i) {
        defaults->setIntegerForKey(i, NSString::create("key" + std::to_string(i)));
    }
    return defaults;
}

// Answers autoreleased objects: the pool is drained every few hundred reads,
// and the draining is part of the measured cost.
class DrainingPool {
  public:
    DrainingPool() : token_(objc_autoreleasePoolPush()) {}
    ~DrainingPool() { objc_autoreleasePoolPop(token_); }
    void tick() {
        if (++count_ == kDrainEvery) {
            count_ = 0;
            objc_autoreleasePoolPop(token_);
            token_ = objc_autoreleasePoolPush();
        }
    }

  private:
    void* token_;
    int count_ = 0;
};

// A read of an integer setting: the number is an object of its own, so the
// answer costs a retain now and a release when the pool drains.
void BM_DefaultsObjectForKey(benchmark::State& state) {
    const auto defaults = filledDefaults("");
    // Equal to the stored key, never the same object, as callers pass literals.
    const auto probe = NSString::create("key42");
    DrainingPool pool;
    for (auto _ : state) {
        benchmark::DoNotOptimize(defaults->objectForKey(probe));
        pool.tick();
    }
}
BENCHMARK(BM_DefaultsObjectForKey);

// The same read of a switch setting: booleans are shared immortal numbers,
// so the reference handed out costs no atomic operation. Shown beside the
// target to separate the lookup's cost from the reference counting's.
void BM_DefaultsObjectForKeyBoolean(benchmark::State& state) {
    const auto defaults = filledDefaults("");
    const auto probe = NSString::create("key42");
    defaults->setBoolForKey(true, probe);
    DrainingPool pool;
    for (auto _ : state) {
        benchmark::DoNotOptimize(defaults->objectForKey(probe));
        pool.tick();
    }
}
BENCHMARK(BM_DefaultsObjectForKeyBoolean);

void BM_DefaultsObserveReadUnobserve(benchmark::State& state) {
    const auto defaults = filledDefaults("");
    const auto key = NSString::create("key42");
    DrainingPool pool;
    for (auto _ : state) {
        const auto observer = objc::make<QuietObserver>();
        defaults->addObserver(observer, key, NSKeyValueObservingOptionNew, nullptr);
        benchmark::DoNotOptimize(defaults->objectForKey(key));
        defaults->removeObserver(observer, key);
        pool.tick();
    }
}
BENCHMARK(BM_DefaultsObserveReadUnobserve);

void BM_DefaultsSetObjectWithObserver(benchmark::State& state) {
    const ScratchFolder folder;
    const auto defaults = filledDefaults(folder.path + "/bench.plist");
    const auto key = NSString::create("key42");
    const auto observer = objc::make<QuietObserver>();
    defaults->addObserver(observer, key, NSKeyValueObservingOptionNew, nullptr);
    const objc::Strong<NSNumber> values[2] = {NSNumber::create(1), NSNumber::create(2)};
    DrainingPool pool;
    int i = 0;
    for (auto _ : state) {
        defaults->setObjectForKey(values[i ^= 1], key);
        pool.tick();
    }
    defaults->removeObserver(observer, key);
}
BENCHMARK(BM_DefaultsSetObjectWithObserver);

}  // namespace
