// Method signatures: a parsed method encoding and the libffi call it describes.
#include <objc/exception.h>
#include <objc/invocation.h>

#include <functional>
#include <string>

namespace {

// An invocation holds every value at once and libffi copies large ones onto
// the stack; real frames are a few hundred bytes.
constexpr std::size_t kMaxFrameSize = 64 * 1024;

[[noreturn]] void invalid(const std::string& reason) {
    objc::raise(objc::exception_name::InvalidArgument,
                "+[NSMethodSignature signatureWithObjCTypes:]: " + reason);
}

}  // namespace

OBJC_DEFINE_CLASS(NSMethodSignature, NSObject, "NSMethodSignature")

void NSMethodSignature::objcDefine(objc::ClassBuilder<NSMethodSignature>& b) {
    b.classMethod<&NSMethodSignature::imp_signatureWithObjCTypes>("signatureWithObjCTypes:")
        .method<&NSMethodSignature::imp_numberOfArguments>("numberOfArguments")
        .method<&NSMethodSignature::imp_getArgumentTypeAtIndex>("getArgumentTypeAtIndex:")
        .method<&NSMethodSignature::imp_methodReturnType>("methodReturnType")
        .method<&NSMethodSignature::imp_methodReturnLength>("methodReturnLength")
        .method<&NSMethodSignature::imp_frameLength>("frameLength")
        .method<&NSMethodSignature::imp_isEqual>("isEqual:")
        .method<&NSMethodSignature::imp_hash>("hash");
}

NSMethodSignature* NSMethodSignature::imp_signatureWithObjCTypes(Class cls, const char* types) {
    if (types == nullptr) invalid("null type encoding");
    auto parsed = objc::parseMethodEncodingCached(types);
    if (parsed->size() < 3) {
        invalid(std::string("'") + types + "' lacks the result, receiver or selector type");
    }
    auto sig = objc::adopt(static_cast<NSMethodSignature*>(
        objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">())));
    sig->prepare(std::move(parsed));
    return objc::autorelease(sig.leak());
}

void NSMethodSignature::prepare(std::shared_ptr<const std::vector<objc::TypeInfo>> types) {
    types_ = std::move(types);
    const std::size_t count = argumentCount();
    std::size_t frame = 0;
    for (const objc::TypeInfo& t : *types_) frame += t.size;  // each at most 2^40
    if (frame > kMaxFrameSize) {
        invalid("its values take " + std::to_string(frame) + " bytes, more than the " +
                std::to_string(kMaxFrameSize) + " an invocation holds");
    }
    ffiArgs_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const objc::TypeInfo& arg = argumentInfo(i);
        // A value without size cannot be passed; libffi would reject it less clearly.
        if (arg.size == 0) {
            invalid("argument " + std::to_string(i) + " has no size: " + arg.qualifiedEncoding);
        }
        ffiArgs_.push_back(arg.ffiType());
    }
    for (const objc::TypeInfo& t : *types_) encoding_ += t.qualifiedEncoding;
    hash_ = std::hash<std::string>{}(encoding_);
    const ffi_status status = ffi_prep_cif(&cif_, FFI_DEFAULT_ABI, static_cast<unsigned>(count),
                                           returnInfo().ffiType(), ffiArgs_.data());
    if (status != FFI_OK) invalid("libffi cannot describe a call of type " + encoding_);
}

const char* NSMethodSignature::imp_getArgumentTypeAtIndex(NSUInteger i) const {
    if (i >= argumentCount()) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSMethodSignature getArgumentTypeAtIndex:]: index (" + std::to_string(i) +
                        ") out of bounds [0, " + std::to_string(argumentCount() - 1) + "]");
    }
    return argumentInfo(i).qualifiedEncoding.c_str();
}

const char* NSMethodSignature::imp_methodReturnType() const {
    return returnInfo().qualifiedEncoding.c_str();
}

NSUInteger NSMethodSignature::imp_frameLength() const {
    // Each argument takes whole 8-byte slots, as it would on the stack.
    NSUInteger length = 0;
    for (std::size_t i = 0; i < argumentCount(); ++i) length += (argumentInfo(i).size + 7) & ~7ul;
    return length;
}

bool NSMethodSignature::imp_isEqual(id other) const {
    if (other == this) return true;
    const auto* sig = objc::cast<NSMethodSignature>(other);
    return sig != nullptr && sig->encoding_ == encoding_;
}
