// Method signatures, invocations and message forwarding.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <objc/block.h>
#include <objc/geometry.h>
#include <objc/invocation.h>
#include <objc/runtime.h>
#include <objc/string.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using objc::msgSend;
using objc::sel;

// Records what it receives and answers a value of each kind.
class InvRecorder : public NSObject {
    OBJC_CLASS(InvRecorder)

    id object = nullptr;
    long count = 0;
    double ratio = 0;
    SEL selector = nullptr;
    void* pointer = nullptr;
    CGRect rect{};
    long base = 0;

  private:
    void imp_record(id o, long c, double r, SEL s, void* p, CGRect rc) {
        object = o;
        count = c;
        ratio = r;
        selector = s;
        pointer = p;
        rect = rc;
    }
    long imp_add(long n) const { return base + n; }
    int imp_value() const { return static_cast<int>(base); }
    void imp_bump() { ++base; }
    CGRect imp_inset(CGRect r, double by) const {
        return CGRectMake(r.origin.x + by, r.origin.y + by, r.size.width - 2 * by,
                          r.size.height - 2 * by);
    }
    template <class T>
    T imp_echo(T value) const {
        return value;
    }
    void imp_fail() {
        objc::raise(objc::exception_name::InternalInconsistency, "failed on purpose");
    }
    void imp_failPlainly() { throw std::runtime_error("plain C++ failure"); }
};

// Answers the recorder's signatures, keeps each forwarded invocation and sends it to its target.
class InvForwarder : public NSObject {
    OBJC_CLASS(InvForwarder)

    objc::Strong<InvRecorder> target;
    objc::Strong<NSInvocation> kept;

  private:
    NSMethodSignature* imp_methodSignatureForSelector(SEL s) {
        return msgSend<NSMethodSignature*>(InvRecorder::objcClass(),
                                           sel<"instanceMethodSignatureForSelector:">(), s);
    }
    void imp_forwardInvocation(NSInvocation* invocation) {
        invocation->retainArguments();
        kept = objc::retained(invocation);
        invocation->invokeWithTarget(target);
    }
};

// Implements nothing of its own.
class InvSilent : public NSObject {
    OBJC_CLASS(InvSilent)
};

}  // namespace

OBJC_DEFINE_CLASS(InvRecorder, NSObject, "InvRecorder")
void InvRecorder::objcDefine(objc::ClassBuilder<InvRecorder>& b) {
    b.method<&InvRecorder::imp_record>("recordObject:count:ratio:selector:pointer:rect:")
        .method<&InvRecorder::imp_add>("add:")
        .method<&InvRecorder::imp_value>("value")
        .method<&InvRecorder::imp_bump>("bump")
        .method<&InvRecorder::imp_inset>("inset:by:")
        .method<&InvRecorder::imp_echo<char>>("echoChar:")
        .method<&InvRecorder::imp_echo<bool>>("echoBool:")
        .method<&InvRecorder::imp_echo<float>>("echoFloat:")
        .method<&InvRecorder::imp_echo<double>>("echoDouble:")
        .method<&InvRecorder::imp_echo<NSRange>>("echoRange:")
        .method<&InvRecorder::imp_echo<id>>("echoObject:")
        .method<&InvRecorder::imp_fail>("fail")
        .method<&InvRecorder::imp_failPlainly>("failPlainly");
}

OBJC_DEFINE_CLASS(InvForwarder, NSObject, "InvForwarder")
void InvForwarder::objcDefine(objc::ClassBuilder<InvForwarder>& b) {
    b.method<&InvForwarder::imp_methodSignatureForSelector>("methodSignatureForSelector:")
        .method<&InvForwarder::imp_forwardInvocation>("forwardInvocation:");
}

OBJC_DEFINE_CLASS(InvSilent, NSObject, "InvSilent")
void InvSilent::objcDefine(objc::ClassBuilder<InvSilent>&) {}

namespace {

// An invocation of one of the recorder's methods, with its arguments set.
template <class... A>
NSInvocation* recorderInvocation(id target, SEL s, A... args) {
    NSMethodSignature* sig = msgSend<NSMethodSignature*>(
        InvRecorder::objcClass(), sel<"instanceMethodSignatureForSelector:">(), s);
    NSInvocation* inv = NSInvocation::invocationWithMethodSignature(sig);
    inv->setTarget(target);
    inv->setSelector(s);
    NSInteger index = 2;
    (inv->setArgument(&args, index++), ...);
    return inv;
}

// Invokes and reads the result into a buffer guarded on both sides, so a wrong-sized copy shows.
template <class R, class... A>
R invokeAndRead(id target, SEL s, A... args) {
    objc::AutoreleasePool pool;
    NSInvocation* inv = recorderInvocation(target, s, args...);
    inv->invoke();
    struct {
        unsigned char before[8];
        R value;
        unsigned char after[8];
    } guarded;
    std::memset(&guarded, 0xA5, sizeof guarded);
    inv->getReturnValue(&guarded.value);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(guarded.before[i], 0xA5);
        EXPECT_EQ(guarded.after[i], 0xA5);
    }
    return guarded.value;
}

std::string reasonOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const objc::Exception& e) {
        return e.name() + ": " + e.reason();
    }
    return "(nothing raised)";
}

TEST(MethodSignature, RejectsBadEncodingsAndIndexes) {
    objc::AutoreleasePool pool;
    for (const char* bad : {"", "i@:{CGRect", "v@:^", "v@:[3", "v@:x"}) {
        EXPECT_THROW(NSMethodSignature::signatureWithObjCTypes(bad), objc::EncodingError) << bad;
    }
    // Well formed, but not a method: no selector, or no receiver.
    EXPECT_THAT(reasonOf([] { NSMethodSignature::signatureWithObjCTypes("v@"); }),
                testing::StartsWith("NSInvalidArgumentException"));
    EXPECT_THROW(NSMethodSignature::signatureWithObjCTypes("v"), objc::Exception);
    EXPECT_THROW(NSMethodSignature::signatureWithObjCTypes(nullptr), objc::Exception);
    // A 3.6 GB frame is refused, not allocated, and so is a layout libffi would get wrong.
    EXPECT_THAT(
        reasonOf([] { NSMethodSignature::signatureWithObjCTypes("v@:{a=[60000{b=[60000c]}]}"); }),
        testing::StartsWith("NSInvalidArgumentException"));
    EXPECT_THROW(NSMethodSignature::signatureWithObjCTypes("v@:{=c[0d]c}"), objc::EncodingError);

    NSMethodSignature* sig = NSMethodSignature::signatureWithObjCTypes("v@:i");
    EXPECT_THAT(reasonOf([&] { sig->getArgumentTypeAtIndex(3); }),
                testing::HasSubstr("index (3) out of bounds"));
    NSInvocation* inv = NSInvocation::invocationWithMethodSignature(sig);
    int value = 1;
    EXPECT_THAT(reasonOf([&] { inv->setArgument(&value, 3); }),
                testing::HasSubstr("setArgument:atIndex:]: index (3) out of bounds"));
    EXPECT_THROW(inv->getArgument(&value, 3), objc::Exception);
    EXPECT_THROW(inv->getArgument(&value, -1), objc::Exception);
    EXPECT_THROW(NSInvocation::invocationWithMethodSignature(nullptr), objc::Exception);
}

TEST(Invocation, ArgumentsRoundTripWithoutDisturbingTheirNeighbours) {
    objc::AutoreleasePool pool;
    NSMethodSignature* sig = NSMethodSignature::signatureWithObjCTypes(
        objc::methodEncoding<void, id, int, double, SEL, void*, CGRect, NSRange, char>());
    NSInvocation* inv = NSInvocation::invocationWithMethodSignature(sig);

    auto object = objc::make<NSObject>();
    int pointee = 0;
    const auto args = std::make_tuple(static_cast<id>(object.get()), -123456, 6.25,
                                      sel<"someSelector:">(), static_cast<void*>(&pointee),
                                      CGRectMake(1.5, -2.5, 300, 400), NSMakeRange(7, 42), 'z');
    inv->setTarget(object);
    inv->setSelector(sel<"anything">());
    // Every argument is set before any is read back, so overlapping slots show.
    std::apply(
        [&](auto... values) {
            NSInteger index = 2;
            (inv->setArgument(&values, index++), ...);
        },
        args);
    std::apply(
        [&](auto... expected) {
            NSInteger index = 2;
            const auto check = [&](auto value) {
                // Guarded so that a copy longer than the argument shows.
                struct {
                    decltype(value) out;
                    char guard;
                } read{{}, 'g'};
                inv->getArgument(&read.out, index);
                EXPECT_EQ(read.out, value) << "argument " << index;
                EXPECT_EQ(read.guard, 'g') << "argument " << index;
                ++index;
            };
            (check(expected), ...);
        },
        args);
    EXPECT_EQ(inv->target(), object.get());
    EXPECT_EQ(inv->selector(), sel<"anything">());
}

TEST(Invocation, ReturnsValuesOfEveryKind) {
    auto r = objc::make<InvRecorder>();
    EXPECT_EQ(invokeAndRead<char>(r, sel<"echoChar:">(), static_cast<char>(-7)), -7);
    EXPECT_EQ(invokeAndRead<bool>(r, sel<"echoBool:">(), true), true);
    EXPECT_EQ(invokeAndRead<float>(r, sel<"echoFloat:">(), 1.25f), 1.25f);
    EXPECT_EQ(invokeAndRead<double>(r, sel<"echoDouble:">(), -1e300), -1e300);
    EXPECT_EQ(invokeAndRead<CGRect>(r, sel<"inset:by:">(), CGRectMake(0, 0, 10, 20), 1.0),
              CGRectMake(1, 1, 8, 18));
    EXPECT_EQ(invokeAndRead<NSRange>(r, sel<"echoRange:">(), NSMakeRange(3, 4)), NSMakeRange(3, 4));
    EXPECT_EQ(invokeAndRead<id>(r, sel<"echoObject:">(), static_cast<id>(r.get())), r.get());
}

// Fills the stack below the caller, where a call leaves its temporaries.
[[gnu::noinline]] void scribbleStack() {
    volatile unsigned char junk[8192];
    for (auto& b : junk) b = 0xFF;
}

TEST(Invocation, LargeStructArgumentsOutliveTheCallAndExceptionsReachTheCaller) {
    objc::AutoreleasePool pool;
    auto r = objc::make<InvRecorder>();
    const CGRect rect = CGRectMake(0, 0, 10, 20);
    NSInvocation* inv = recorderInvocation(r, sel<"inset:by:">(), rect, 1.0);
    inv->invoke();
    scribbleStack();
    CGRect stored{};
    inv->getArgument(&stored, 2);
    EXPECT_EQ(stored, rect);
    inv->invoke();
    CGRect result{};
    inv->getReturnValue(&result);
    EXPECT_EQ(result, CGRectMake(1, 1, 8, 18));
    // Exceptions from the implementation reach the caller; the invocation stays usable.
    inv = recorderInvocation(r, sel<"fail">());
    EXPECT_EQ(reasonOf([&] { inv->invoke(); }),
              "NSInternalInconsistencyException: failed on purpose");
    inv->setSelector(sel<"failPlainly">());
    EXPECT_THROW(inv->invoke(), std::runtime_error);
    inv->setSelector(sel<"bump">());
    inv->invoke();
    EXPECT_EQ(r->base, 1);
}

TEST(Invocation, KeptAndReplayedOnAnotherTarget) {
    auto first = objc::make<InvRecorder>();
    auto second = objc::make<InvRecorder>();
    second->base = 1000;
    objc::Strong<NSInvocation> kept;
    {
        objc::AutoreleasePool pool;
        NSInvocation* inv = recorderInvocation(first, sel<"add:">(), 5L);
        inv->retainArguments();
        kept = objc::retained(inv);
    }
    long result = 0;
    kept->invokeWithTarget(second);
    kept->getReturnValue(&result);
    EXPECT_EQ(result, 1005);
    // The invocation now owns the new target, not the old one.
    EXPECT_EQ(objc_retainCount(first), 1u);
    EXPECT_EQ(objc_retainCount(second), 2u);
    kept.reset();
    EXPECT_EQ(objc_retainCount(second), 1u);
}

TEST(Invocation, ManyThreadsInvokeTheirOwnInvocations) {
    auto r = objc::make<InvRecorder>();
    r->base = 10;
    std::vector<std::thread> threads;
    std::vector<long> sums(4);
    for (long t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            objc::AutoreleasePool pool;
            NSInvocation* inv = recorderInvocation(r, sel<"add:">(), t);
            for (int i = 0; i < 200; ++i) {
                inv->invoke();
                long result = 0;
                inv->getReturnValue(&result);
                sums[t] += result;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(sums, (std::vector<long>{2000, 2200, 2400, 2600}));
}

TEST(InvocationOwnership, RetainsObjectsAndCopiesBlocksAndStringsUntilDealloc) {
    auto target = objc::make<InvRecorder>();
    auto object = objc::make<NSObject>();
    auto block = objc::makeBlock<void()>([] {});
    char text[] = "hello";
    {
        objc::AutoreleasePool pool;
        NSMethodSignature* sig = NSMethodSignature::signatureWithObjCTypes(
            objc::methodEncoding<void, id, objc::BlockBase*, char*, int>());
        EXPECT_STREQ(sig->getArgumentTypeAtIndex(3), "@?");
        NSInvocation* inv = NSInvocation::invocationWithMethodSignature(sig);
        id objectArg = object.get();
        objc::BlockBase* blockArg = block.get();
        char* textArg = text;
        inv->setTarget(target);
        inv->setArgument(&objectArg, 2);
        inv->setArgument(&blockArg, 3);
        inv->setArgument(&textArg, 4);
        EXPECT_FALSE(inv->argumentsRetained());
        EXPECT_EQ(objc_retainCount(object), 1u);
        EXPECT_EQ(objc_retainCount(target), 1u);

        inv->retainArguments();
        inv->retainArguments();  // only once
        EXPECT_TRUE(inv->argumentsRetained());
        EXPECT_EQ(objc_retainCount(target), 2u);
        EXPECT_EQ(objc_retainCount(object), 2u);
        EXPECT_EQ(objc_retainCount(block), 2u);  // copied: a heap block copies to itself
        char* stored = nullptr;
        inv->getArgument(&stored, 4);
        EXPECT_NE(stored, text);
        text[0] = 'j';
        EXPECT_STREQ(stored, "hello");

        // Arguments set later are owned too, and the ones they replace let go.
        auto replacement = objc::make<NSObject>();
        id replacementArg = replacement.get();
        inv->setArgument(&replacementArg, 2);
        EXPECT_EQ(objc_retainCount(object), 1u);
        EXPECT_EQ(objc_retainCount(replacement), 2u);
        inv->setArgument(&replacementArg, 2);  // the same object again
        EXPECT_EQ(objc_retainCount(replacement), 2u);
        textArg = nullptr;
        inv->setArgument(&textArg, 4);
        inv->getArgument(&stored, 4);
        EXPECT_EQ(stored, nullptr);
    }
    EXPECT_EQ(objc_retainCount(target), 1u);
    EXPECT_EQ(objc_retainCount(object), 1u);
    EXPECT_EQ(objc_retainCount(block), 1u);
}

TEST(Forwarding, ArgumentsOfEveryKindReachTheTargetAndReplayLater) {
    auto forwarder = objc::make<InvForwarder>();
    forwarder->target = objc::make<InvRecorder>();
    auto object = objc::make<NSObject>();
    int pointee = 0;
    const CGRect rect = CGRectMake(10, 20, 30, 40);
    {
        objc::AutoreleasePool pool;
        msgSend<void>(forwarder, sel<"recordObject:count:ratio:selector:pointer:rect:">(),
                      static_cast<id>(object.get()), 42L, 2.5, sel<"picked:">(),
                      static_cast<void*>(&pointee), rect);
    }
    const auto check = [&](const InvRecorder& got) {
        EXPECT_EQ(got.object, object.get());
        EXPECT_EQ(got.count, 42);
        EXPECT_EQ(got.ratio, 2.5);
        EXPECT_EQ(got.selector, sel<"picked:">());
        EXPECT_EQ(got.pointer, &pointee);
        EXPECT_EQ(got.rect, rect);
    };
    check(*forwarder->target);
    // Kept with its arguments retained, after the pool that made it is gone.
    EXPECT_EQ(objc_retainCount(object), 2u);
    auto later = objc::make<InvRecorder>();
    forwarder->kept->invokeWithTarget(later);
    check(*later);
    forwarder->kept.reset();
    EXPECT_EQ(objc_retainCount(object), 1u);
}

TEST(Forwarding, ResultsComeBackAndMismatchedArgumentsRaise) {
    objc::AutoreleasePool pool;
    auto forwarder = objc::make<InvForwarder>();
    forwarder->target = objc::make<InvRecorder>();
    forwarder->target->base = 40;
    EXPECT_EQ(msgSend<long>(forwarder, sel<"add:">(), 2L), 42);
    EXPECT_EQ(msgSend<CGRect>(forwarder, sel<"inset:by:">(), CGRectMake(0, 0, 4, 4), 1.0),
              CGRectMake(1, 1, 2, 2));
    EXPECT_EQ(msgSend<float>(forwarder, sel<"echoFloat:">(), 0.5f), 0.5f);
    // Through an implementation pointer, as a caller without the types sees it.
    NSInvocation* inv = recorderInvocation(forwarder, sel<"value">());
    inv->invoke();
    int value = 0;
    inv->getReturnValue(&value);
    EXPECT_EQ(value, 40);
    EXPECT_EQ(reasonOf([&] { msgSend<void>(forwarder, sel<"fail">()); }),
              "NSInternalInconsistencyException: failed on purpose");
    // add: takes a long: an int or a CGPoint would be read past its end; nothing is forwarded.
    forwarder->kept.reset();
    EXPECT_THAT(reasonOf([&] { msgSend<long>(forwarder, sel<"add:">(), 2); }),
                testing::HasSubstr("NSInvalidArgumentException"));
    EXPECT_THROW(msgSend<CGRect>(forwarder, sel<"inset:by:">(), CGPointMake(0, 0), 1.0),
                 objc::Exception);
    EXPECT_THROW(msgSend<long>(forwarder, sel<"add:">(), 2L, 3L), objc::Exception);
    EXPECT_FALSE(forwarder->kept);
}

TEST(Forwarding, UnrecognizedSelectorsNameTheClassAndSelector) {
    objc::AutoreleasePool pool;
    auto silent = objc::make<InvSilent>();
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(silent.get()));
    EXPECT_EQ(reasonOf([&] { msgSend<void>(silent, sel<"bar:">(), 1); }),
              std::string("NSInvalidArgumentException: -[InvSilent bar:]: unrecognized selector "
                          "sent to instance ") +
                  address);
    EXPECT_THAT(reasonOf([] { msgSend<void>(InvSilent::objcClass(), sel<"bar:">(), 1); }),
                testing::HasSubstr("+[InvSilent bar:]: unrecognized selector sent to class"));
    // The forwarder answers no signature for selectors its target lacks.
    auto forwarder = objc::make<InvForwarder>();
    EXPECT_THAT(reasonOf([&] { msgSend<void>(forwarder, sel<"bar:">(), 1); }),
                testing::HasSubstr("-[InvForwarder bar:]: unrecognized selector"));
}

}  // namespace
