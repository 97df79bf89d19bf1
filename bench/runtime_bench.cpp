// Message sending against the C++ baselines it replaces.
#include <benchmark/benchmark.h>

#include <objc/object.h>
#include <objc/runtime.h>

#include <memory>

#include "hooks/hook_installation.h"
#include "ratios.h"
#include "virtual_baseline.h"

BENCH_RATIO("cached send vs C++ virtual call", "BM_CachedSend", "BM_VirtualCall/1", 2.0);
BENCH_RATIO("send through a hook calling the original vs plain send", "BM_HookedSend",
            "BM_PlainSend", 1.3);
BENCH_BOUND("method_setImplementation, then the next send", "BM_SetImplementationThenSend", 200);

namespace {

// The same small body behind both kinds of call; the virtual object comes from
// another translation unit so that the compiler cannot devirtualize the call.
class BenchCounter : public NSObject {
    OBJC_CLASS(BenchCounter)
    long value = 0;

  public:
    // Shared with the subclass, which registers it as its own method.
    long imp_add(long n) { return value += n; }
};

class HookedCounter : public BenchCounter {
    OBJC_CLASS(HookedCounter)
};

}  // namespace

OBJC_DEFINE_CLASS(BenchCounter, NSObject, "BenchCounter")
void BenchCounter::objcDefine(objc::ClassBuilder<BenchCounter>& b) {
    b.method<&BenchCounter::imp_add>("add:");
}
OBJC_DEFINE_CLASS(HookedCounter, BenchCounter, "HookedCounter")
void HookedCounter::objcDefine(objc::ClassBuilder<HookedCounter>& b) {
    b.method<&BenchCounter::imp_add>("add:");
}

namespace {

void BM_VirtualCall(benchmark::State& state) {
    const std::unique_ptr<bench::VirtualBase> counter = bench::makeVirtualCounter(state.range(0));
    bench::VirtualBase* p = counter.get();
    long n = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p->add(n));
    }
}
BENCHMARK(BM_VirtualCall)->Arg(1);

void BM_CachedSend(benchmark::State& state) {
    auto counter = objc::make<BenchCounter>();
    id obj = counter.get();
    const SEL add = objc::sel<"add:">();
    benchmark::DoNotOptimize(obj);
    long n = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(objc::msgSend<long>(obj, add, n));
    }
}
BENCHMARK(BM_CachedSend);

void BM_PlainSend(benchmark::State& state) {
    auto counter = objc::make<HookedCounter>();
    id obj = counter.get();
    const SEL add = objc::sel<"add:">();
    long n = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(objc::msgSend<long>(obj, add, n));
    }
}
BENCHMARK(BM_PlainSend);

// A hook as the library writes one, passing its calls on through its slot.
long hookedAdd(id self, SEL sel, long n) {
    return parcelvane::hooks::callOriginal<&hookedAdd>(self, sel, n);
}
IMP& gOriginalAdd = parcelvane::hooks::Original<&hookedAdd>::imp;

void BM_HookedSend(benchmark::State& state) {
    const Method m = class_getInstanceMethod(HookedCounter::objcClass(), objc::sel<"add:">());
    gOriginalAdd = method_setImplementation(m, reinterpret_cast<IMP>(&hookedAdd));
    auto counter = objc::make<HookedCounter>();
    id obj = counter.get();
    const SEL add = objc::sel<"add:">();
    long n = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(objc::msgSend<long>(obj, add, n));
    }
    method_setImplementation(m, gOriginalAdd);
}
BENCHMARK(BM_HookedSend);

long addTwice(id self, SEL, long n) {
    return static_cast<BenchCounter*>(self)->value += 2 * n;
}

void BM_SetImplementationThenSend(benchmark::State& state) {
    // Benchmarks run more than once; the class is made the first time.
    static const Class cls = [] {
        const Class c = objc_allocateClassPair(BenchCounter::objcClass(), "SwappedCounter", 0);
        objc_registerClassPair(c);
        class_addMethod(c, objc::sel<"add:">(), reinterpret_cast<IMP>(&addTwice), "q@:q");
        return c;
    }();
    const Method m = class_getInstanceMethod(cls, objc::sel<"add:">());
    const IMP imps[2] = {reinterpret_cast<IMP>(&addTwice), reinterpret_cast<IMP>(&hookedAdd)};
    gOriginalAdd = imps[0];
    const id obj = objc::msgSend<id>(cls, objc::sel<"new">());
    const SEL add = objc::sel<"add:">();
    objc::msgSend<long>(obj, add, 1L);  // cached before the loop
    unsigned i = 0;
    for (auto _ : state) {
        method_setImplementation(m, imps[++i & 1]);
        benchmark::DoNotOptimize(objc::msgSend<long>(obj, add, 1L));
    }
    method_setImplementation(m, imps[0]);
    objc_release(obj);
}
BENCHMARK(BM_SetImplementationThenSend);

}  // namespace
