// Format strings, as stringWithFormat: and NSLog take them, over arguments of
// every kind (extreme integers among them, for '*' widths and precisions).
#include <Foundation/NSNumber.h>
#include <Foundation/string_format.h>

#include <climits>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    const auto number = NSNumber::create(2.5);
    const char* none = nullptr;
    try {
        (void)objc::formatUtf8(fuzzing::bytes(data, size), INT_MIN, INT_MAX, -1, 7, LLONG_MIN,
                               ULLONG_MAX, 1e308, -0.0, "text", none, NSSTR("é object"),
                               number.get(), static_cast<void*>(nullptr), u'€', 'x', 3.25f);
    } catch (const objc::Exception&) {  // more directives than arguments
    }
    return 0;
}
