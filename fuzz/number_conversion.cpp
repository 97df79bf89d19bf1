// Numbers read from strings: intValue, doubleValue and the rest.
#include <Foundation/NSString.h>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    NSString* text = objc::autorelease(NSString::create(fuzzing::bytes(data, size)).leak());
    (void)text->intValue();
    (void)text->integerValue();
    (void)text->longLongValue();
    (void)text->floatValue();
    (void)text->doubleValue();
    (void)text->boolValue();
    return 0;
}
