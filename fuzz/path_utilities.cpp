// Path manipulation on strings: the first line is the path, the rest a
// component or extension to add.
#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    const auto input = fuzzing::parts(fuzzing::bytes(data, size), 2);
    NSString* path = objc::autorelease(NSString::create(input[0]).leak());
    NSString* other = objc::autorelease(NSString::create(input[1]).leak());
    (void)path->pathExtension();
    (void)path->lastPathComponent();
    (void)path->pathComponents();
    (void)path->isAbsolutePath();
    (void)path->stringByDeletingLastPathComponent();
    (void)path->stringByDeletingPathExtension();
    (void)path->stringByStandardizingPath();
    (void)path->stringByExpandingTildeInPath();
    (void)path->stringByAppendingPathComponent(other);
    (void)path->stringByAppendingPathExtension(other);
    return 0;
}
