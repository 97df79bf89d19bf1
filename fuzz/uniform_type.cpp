// Uniform type look-ups: lines are a tag class, a tag and a type to conform
// to; the identifier found (often a dynamic one) is read back, and the whole
// input is tried as an identifier too.
#include <Foundation/NSArray.h>
#include <MobileCoreServices/UTCoreTypes.h>
#include <MobileCoreServices/UTType.h>

#include "fuzz_input.h"

namespace {

NSString* string(std::string_view text) {
    return objc::autorelease(NSString::create(text).leak());
}

// Create/Copy results are owned by the caller.
template <class T>
void release(T* owned) {
    (void)objc::adopt(owned);
}

void inspect(NSString* uti) {
    for (NSString* tagClass : {kUTTagClassFilenameExtension, kUTTagClassMIMEType}) {
        release(UTTypeCopyPreferredTagWithClass(uti, tagClass));
        release(UTTypeCopyAllTagsWithClass(uti, tagClass));
    }
    (void)UTTypeConformsTo(uti, kUTTypeData);
    (void)UTTypeConformsTo(uti, kUTTypeImage);
    (void)UTTypeIsDynamic(uti);
    (void)UTTypeIsDeclared(uti);
    release(UTTypeCopyDescription(uti));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    const auto input = fuzzing::bytes(data, size);
    const auto line = fuzzing::parts(input, 3);
    NSString* conformingTo = line[2].empty() ? nullptr : string(line[2]);
    const auto found = objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(string(line[0]), string(line[1]), conformingTo));
    if (found) {
        inspect(found.get());
        release(UTTypeCopyPreferredTagWithClass(found.get(), string(line[0])));
    }
    release(UTTypeCreateAllIdentifiersForTag(string(line[0]), string(line[1]), conformingTo));
    inspect(string(input));
    return 0;
}
