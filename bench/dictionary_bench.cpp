// Dictionary lookup against the C++ hash map it stands in for.
#include <benchmark/benchmark.h>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSNumber.h>

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ratios.h"

BENCH_RATIO("objectForKey: vs std::unordered_map find", "BM_DictionaryObjectForKey",
            "BM_UnorderedMapFind", 3.0);

namespace {

constexpr int kKeys = 100;

std::string keyName(int i) {
    return "key" + std::to_string(i);
}

void BM_UnorderedMapFind(benchmark::State& state) {
    std::unordered_map<std::string, int> map;
    for (int i = 0; i < kKeys; ++i) map.emplace(keyName(i), i);
    const std::string probe = keyName(42);
    for (auto _ : state) {
        auto it = map.find(probe);
        benchmark::DoNotOptimize(it);
    }
}
BENCHMARK(BM_UnorderedMapFind);

void BM_DictionaryObjectForKey(benchmark::State& state) {
    objc::AutoreleasePool pool;
    std::vector<objc::Strong<objc_object>> held;
    std::vector<std::pair<id, id>> pairs;
    for (int i = 0; i < kKeys; ++i) {
        auto key = NSString::create(keyName(i));
        auto value = NSNumber::create(i);
        pairs.emplace_back(key.get(), value.get());
        held.emplace_back(std::move(key));
        held.emplace_back(std::move(value));
    }
    auto dictionary = NSDictionary::create(pairs);
    // Equal to the stored key, never the same object: the lookup must compare.
    auto probe = NSString::create(keyName(42));
    NSDictionary* dict = dictionary.get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(dict->objectForKey(probe.get()));
    }
}
BENCHMARK(BM_DictionaryObjectForKey);

}  // namespace
