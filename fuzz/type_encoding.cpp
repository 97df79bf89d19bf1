// Type encodings and method signatures: parsing, the libffi description of
// every aggregate (which must lay out as the parser does), signatures and
// invocations built from them.
#include <objc/invocation.h>
#include <objc/type_info.h>

#include <ffi.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "fuzz_input.h"

namespace {

// libffi, left to lay out the same elements itself, must agree with the parser.
void checkLayout(const objc::TypeInfo& t) {
    ffi_type* type = t.ffiType();
    if (type->type != FFI_TYPE_STRUCT) return;
    ffi_type fresh{};
    fresh.type = FFI_TYPE_STRUCT;
    fresh.elements = type->elements;
    ffi_type* args[] = {&fresh};
    ffi_cif cif;
    if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 1, &ffi_type_void, args) != FFI_OK) return;
    if (type->size != t.size || fresh.size != t.size || fresh.alignment != t.alignment) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzzing::bytes(data, size));
    try {
        for (const objc::TypeInfo& t : objc::parseMethodEncoding(text)) checkLayout(t);
    } catch (const objc::EncodingError&) {
    }
    NSUInteger length = 0, alignment = 0;
    NSGetSizeAndAlignment(text.c_str(), &length, &alignment);  // never throws
    objc::AutoreleasePool pool;
    try {
        NSMethodSignature* signature = NSMethodSignature::signatureWithObjCTypes(text.c_str());
        NSInvocation* invocation = NSInvocation::invocationWithMethodSignature(signature);
        invocation->retainArguments();
    } catch (const std::exception&) {  // malformed, or no method an invocation can hold
    }
    return 0;
}
