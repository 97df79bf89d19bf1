// Property lists, binary and XML, as NSPropertyListSerialization reads them.
#include <Foundation/NSData.h>
#include <Foundation/NSError.h>
#include <Foundation/NSPropertyListSerialization.h>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    NSError* error = nullptr;
    id list = NSPropertyListSerialization::propertyListWithData(
        NSData::create(fuzzing::bytes(data, size)), {}, nullptr, &error);
    if (list != nullptr) {
        // What was read can be written again.
        (void)NSPropertyListSerialization::dataWithPropertyList(
            list, NSPropertyListBinaryFormat_v1_0, {}, &error);
    }
    return 0;
}
