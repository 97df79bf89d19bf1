// Invocations: a message's target, selector, arguments and result, held as
// values laid out for libffi, so that invoking one is a lookup and a call.
#include <objc/exception.h>
#include <objc/invocation.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Kind = objc::TypeInfo::Kind;

bool isIntegral(Kind k) {
    switch (k) {
        case Kind::Char:
        case Kind::UnsignedChar:
        case Kind::Short:
        case Kind::UnsignedShort:
        case Kind::Int:
        case Kind::UnsignedInt:
        case Kind::Long:
        case Kind::UnsignedLong:
        case Kind::Bool:
            return true;
        default:
            return false;
    }
}

std::size_t alignUp(std::size_t n, std::size_t alignment) {
    return (n + alignment - 1) / alignment * alignment;
}

id readObject(const void* slot) {
    id obj;
    std::memcpy(&obj, slot, sizeof obj);
    return obj;
}

void writeObject(void* slot, id obj) {
    std::memcpy(slot, &obj, sizeof obj);
}

std::unique_ptr<char[]> copyString(const void* slot) {
    const char* text;
    std::memcpy(&text, slot, sizeof text);
    if (text == nullptr) return nullptr;
    const std::size_t length = std::strlen(text) + 1;
    auto copy = std::make_unique<char[]>(length);
    std::memcpy(copy.get(), text, length);
    return copy;
}

}  // namespace

struct NSInvocation::State {
    // What retainArguments does with an argument.
    enum class Ownership : std::uint8_t { None, Retain, Copy, CopyString };

    objc::Strong<NSMethodSignature> signature;
    ffi_cif* cif = nullptr;
    // Every argument, then the result, each at its own alignment. Zeroed.
    std::vector<std::byte> storage;
    // Where each argument lies, copied into the value array of each call.
    std::vector<void*> arguments;
    std::vector<std::size_t> sizes;
    std::vector<Ownership> ownership;
    // Copies of C-string arguments, by index, once the arguments are retained.
    std::vector<std::unique_ptr<char[]>> strings;
    std::byte* result = nullptr;
    std::size_t resultCapacity = 0;
    std::size_t resultSize = 0;
    // libffi widens small integral results to a whole ffi_arg; on a big-endian
    // machine the value is in its last bytes.
    std::size_t resultOffset = 0;
    bool retained = false;
};

// The implementations of NSInvocation's methods.
struct InvocationAccess {
    using State = NSInvocation::State;

    using Ownership = State::Ownership;

    static State& state(NSInvocation* inv) {
        if (!inv->state_) [[unlikely]] {
            objc::raise(objc::exception_name::InternalInconsistency,
                        "NSInvocation used without a method signature: create it with "
                        "+invocationWithMethodSignature:");
        }
        return *inv->state_;
    }

    static Ownership ownershipOf(const objc::TypeInfo& t) {
        switch (t.kind) {
            case Kind::Object:
                return Ownership::Retain;
            case Kind::Block:
                return Ownership::Copy;
            case Kind::CString:
                return Ownership::CopyString;
            default:
                return Ownership::None;
        }
    }

    // The value retainArguments keeps for a new argument, owned by the caller.
    static id ownedObject(Ownership how, id obj) {
        if (obj == nullptr) return nullptr;
        return how == Ownership::Copy ? objc::msgSend<id>(obj, objc::sel<"copy">())
                                      : objc_retain(obj);
    }

    [[noreturn]] static void outOfBounds(const char* method, NSInteger index, const State& s) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("-[NSInvocation ") + method + "]: index (" + std::to_string(index) +
                        ") out of bounds [0, " + std::to_string(s.arguments.size() - 1) + "]");
    }

    static std::size_t checkedIndex(const char* method, NSInteger index, const State& s) {
        if (index < 0 || static_cast<std::size_t>(index) >= s.arguments.size()) {
            outOfBounds(method, index, s);
        }
        return static_cast<std::size_t>(index);
    }

    static NSInvocation* invocationWithMethodSignature(Class cls, SEL, NSMethodSignature* sig) {
        if (sig == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "+[NSInvocation invocationWithMethodSignature:]: nil signature");
        }
        const std::size_t count = sig->argumentCount();
        if (sig->argumentInfo(0).size != sizeof(id) || sig->argumentInfo(1).size != sizeof(SEL)) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "+[NSInvocation invocationWithMethodSignature:]: the receiver and "
                        "selector of a message are pointers");
        }
        auto inv = objc::adopt(static_cast<NSInvocation*>(
            objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">())));
        auto s = std::make_unique<State>();
        s->signature = objc::retained(sig);
        s->cif = sig->cif();

        std::vector<std::size_t> offsets(count);
        std::size_t end = 0;
        std::size_t maxAlignment = alignof(std::max_align_t);
        s->sizes.reserve(count);
        s->ownership.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const objc::TypeInfo& t = sig->argumentInfo(i);
            offsets[i] = alignUp(end, t.alignment);
            end = offsets[i] + t.size;
            maxAlignment = std::max(maxAlignment, t.alignment);
            s->sizes.push_back(t.size);
            s->ownership.push_back(ownershipOf(t));
        }
        const objc::TypeInfo& r = sig->returnInfo();
        const std::size_t resultAt = alignUp(end, std::max(r.alignment, alignof(ffi_arg)));
        s->resultSize = r.size;
        s->resultCapacity = alignUp(std::max(r.size, sizeof(ffi_arg)), sizeof(ffi_arg));
        // A plain if: isIntegral stays in use on every machine.
        if (std::endian::native == std::endian::big && isIntegral(r.kind) &&
            r.size < sizeof(ffi_arg)) {
            s->resultOffset = sizeof(ffi_arg) - r.size;
        }
        maxAlignment = std::max(maxAlignment, r.alignment);

        // Over-allocated so that the base can be aligned for the most aligned value.
        s->storage.resize(resultAt + s->resultCapacity + maxAlignment);
        void* base = s->storage.data();
        std::size_t space = s->storage.size();
        std::align(maxAlignment, resultAt + s->resultCapacity, base, space);
        auto* frame = static_cast<std::byte*>(base);
        s->arguments.reserve(count);
        for (std::size_t i = 0; i < count; ++i) s->arguments.push_back(frame + offsets[i]);
        s->result = frame + resultAt;

        inv->state_ = std::move(s);
        return objc::autorelease(inv.leak());
    }

    static NSMethodSignature* methodSignature(NSInvocation* self, SEL) {
        return state(self).signature.get();
    }

    static void getArgument(NSInvocation* self, SEL, void* buffer, NSInteger index) {
        const State& s = state(self);
        const std::size_t i = checkedIndex("getArgument:atIndex:", index, s);
        std::memcpy(buffer, s.arguments[i], s.sizes[i]);
    }

    static void setArgument(NSInvocation* self, SEL, void* buffer, NSInteger index) {
        State& s = state(self);
        const std::size_t i = checkedIndex("setArgument:atIndex:", index, s);
        storeArgument(s, i, buffer);
    }

    // Copies the value in; once arguments are retained, takes ownership of the
    // new value before giving up the old one, which may be the same object.
    static void storeArgument(State& s, std::size_t i, const void* value) {
        const Ownership how = s.retained ? s.ownership[i] : Ownership::None;
        switch (how) {
            case Ownership::None:
                std::memcpy(s.arguments[i], value, s.sizes[i]);
                break;
            case Ownership::Retain:
            case Ownership::Copy: {
                const id owned = ownedObject(how, readObject(value));
                const id old = readObject(s.arguments[i]);
                writeObject(s.arguments[i], owned);
                objc_release(old);
                break;
            }
            case Ownership::CopyString: {
                auto copy = copyString(value);
                const char* text = copy.get();
                std::memcpy(s.arguments[i], &text, sizeof text);
                s.strings[i] = std::move(copy);
                break;
            }
        }
    }

    static id target(NSInvocation* self, SEL) { return readObject(state(self).arguments[0]); }
    static void setTarget(NSInvocation* self, SEL, id target) {
        storeArgument(state(self), 0, &target);
    }
    static SEL selector(NSInvocation* self, SEL) {
        SEL sel;
        std::memcpy(&sel, state(self).arguments[1], sizeof sel);
        return sel;
    }
    static void setSelector(NSInvocation* self, SEL, SEL sel) {
        std::memcpy(state(self).arguments[1], &sel, sizeof sel);
    }

    static void retainArguments(NSInvocation* self, SEL) {
        State& s = state(self);
        if (s.retained) return;
        s.strings.resize(s.arguments.size());
        // Each value is stored again with ownership, so an argument replaced
        // later releases exactly what was taken here.
        s.retained = true;
        for (std::size_t i = 0; i < s.arguments.size(); ++i) {
            if (s.ownership[i] == Ownership::None) continue;
            void* current;
            std::memcpy(&current, s.arguments[i], sizeof current);
            // Nothing owned yet: clear the slot so storing does not release it.
            std::memset(s.arguments[i], 0, sizeof current);
            storeArgument(s, i, &current);
        }
    }

    static bool argumentsRetained(NSInvocation* self, SEL) { return state(self).retained; }

    static void invoke(NSInvocation* self, SEL) { invokeState(state(self)); }

    static void invokeWithTarget(NSInvocation* self, SEL, id target) {
        State& s = state(self);
        storeArgument(s, 0, &target);
        invokeState(s);
    }

    static void invokeState(State& s) {
        const id target = readObject(s.arguments[0]);
        if (target == nullptr) [[unlikely]] {
            std::memset(s.result, 0, s.resultCapacity);
            return;
        }
        SEL sel;
        std::memcpy(&sel, s.arguments[1], sizeof sel);
        const Class cls = target->isa_.load(std::memory_order_relaxed);
        IMP imp = objc::detail::cacheLookup(cls, sel);
        if (imp == nullptr) [[unlikely]] {
            if (sel == nullptr) {
                objc::raise(objc::exception_name::InvalidArgument,
                            "-[NSInvocation invoke]: the invocation has no selector");
            }
            imp = class_getMethodImplementation(cls, sel);
        }
        // libffi points the entries of large struct arguments at copies of its
        // own on its stack, so it gets a scratch copy of the array, not ours.
        constexpr std::size_t kOnStack = 16;
        const std::size_t count = s.arguments.size();
        if (count <= kOnStack) [[likely]] {
            std::array<void*, kOnStack> values;
            std::copy_n(s.arguments.data(), count, values.data());
            ffi_call(s.cif, imp, s.result, values.data());
        } else {
            std::vector<void*> values(s.arguments);
            ffi_call(s.cif, imp, s.result, values.data());
        }
    }

    static void getReturnValue(NSInvocation* self, SEL, void* buffer) {
        const State& s = state(self);
        std::memcpy(buffer, s.result + s.resultOffset, s.resultSize);
    }

    static void setReturnValue(NSInvocation* self, SEL, void* buffer) {
        State& s = state(self);
        std::memcpy(s.result + s.resultOffset, buffer, s.resultSize);
    }

    // Gives back what retainArguments took.
    static void releaseArguments(State& s) {
        if (!s.retained) return;
        for (std::size_t i = 0; i < s.arguments.size(); ++i) {
            if (s.ownership[i] == Ownership::Retain || s.ownership[i] == Ownership::Copy) {
                objc_release(readObject(s.arguments[i]));
            }
        }
    }
};

OBJC_DEFINE_CLASS(NSInvocation, NSObject, "NSInvocation")

NSInvocation::~NSInvocation() {
    if (state_) InvocationAccess::releaseArguments(*state_);
}

void NSInvocation::objcDefine(objc::ClassBuilder<NSInvocation>& b) {
    using A = InvocationAccess;
    b.classImp<&A::invocationWithMethodSignature>("invocationWithMethodSignature:")
        .imp<&A::methodSignature>("methodSignature")
        .imp<&A::target>("target")
        .imp<&A::setTarget>("setTarget:")
        .imp<&A::selector>("selector")
        .imp<&A::setSelector>("setSelector:")
        .imp<&A::getArgument>("getArgument:atIndex:")
        .imp<&A::setArgument>("setArgument:atIndex:")
        .imp<&A::retainArguments>("retainArguments")
        .imp<&A::argumentsRetained>("argumentsRetained")
        .imp<&A::invoke>("invoke")
        .imp<&A::invokeWithTarget>("invokeWithTarget:")
        .imp<&A::getReturnValue>("getReturnValue:")
        .imp<&A::setReturnValue>("setReturnValue:");
}
