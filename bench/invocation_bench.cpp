// -[NSInvocation invoke] against a bare libffi call of the same function: the
// invocation should add no more than its lookup and one message send.
#include <benchmark/benchmark.h>

#include <objc/invocation.h>

#include <ffi.h>

#include "ratios.h"

namespace {

long add(id, SEL, long n) {
    return n + 1;
}

class BenchAdder : public NSObject {
    OBJC_CLASS(BenchAdder)
};

}  // namespace

OBJC_DEFINE_CLASS(BenchAdder, NSObject, "BenchAdder")
void BenchAdder::objcDefine(objc::ClassBuilder<BenchAdder>& b) {
    b.imp<&add>("add:");
}

namespace {

void BM_FfiCallRaw(benchmark::State& state) {
    ffi_type* argTypes[] = {&ffi_type_pointer, &ffi_type_pointer, &ffi_type_sint64};
    ffi_cif cif;
    if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 3, &ffi_type_sint64, argTypes) != FFI_OK) {
        state.SkipWithError("ffi_prep_cif failed");
        return;
    }
    auto target = objc::make<BenchAdder>();
    id self = target.get();
    SEL selector = objc::sel<"add:">();
    long n = 41;
    void* values[] = {&self, &selector, &n};
    ffi_arg result = 0;
    for (auto _ : state) {
        ffi_call(&cif, FFI_FN(&add), &result, values);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_FfiCallRaw);

void BM_InvocationInvoke(benchmark::State& state) {
    objc::AutoreleasePool pool;
    auto target = objc::make<BenchAdder>();
    NSMethodSignature* sig = NSMethodSignature::signatureWithObjCTypes(method_getTypeEncoding(
        class_getInstanceMethod(BenchAdder::objcClass(), objc::sel<"add:">())));
    NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(sig);
    invocation->setTarget(target);
    invocation->setSelector(objc::sel<"add:">());
    long n = 41;
    invocation->setArgument(&n, 2);
    for (auto _ : state) invocation->invoke();
    long result = 0;
    invocation->getReturnValue(&result);
    if (result != 42) state.SkipWithError("wrong result");
}
BENCHMARK(BM_InvocationInvoke);

}  // namespace

BENCH_RATIO("-[NSInvocation invoke] vs a raw ffi_call", "BM_InvocationInvoke", "BM_FfiCallRaw",
            1.5);
