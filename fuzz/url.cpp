// URLs from text, their parts, and URLs derived from them.
#include <Foundation/NSNumber.h>
#include <Foundation/NSURL.h>

#include "fuzz_input.h"

namespace {

void inspect(NSURL* url) {
    if (url == nullptr) return;
    (void)url->absoluteString();
    (void)url->scheme();
    (void)url->user();
    (void)url->password();
    (void)url->host();
    (void)url->port();
    (void)url->path();
    (void)url->query();
    (void)url->fragment();
    (void)url->lastPathComponent();
    (void)url->pathExtension();
    (void)url->hasDirectoryPath();
    (void)url->isFileURL();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    const auto input = fuzzing::parts(fuzzing::bytes(data, size), 2);
    NSString* text = objc::autorelease(NSString::create(input[0]).leak());
    NSString* component = objc::autorelease(NSString::create(input[1]).leak());
    for (NSURL* url : {NSURL::URLWithString(text), NSURL::fileURLWithPath(text)}) {
        inspect(url);
        if (url == nullptr) continue;
        inspect(url->URLByAppendingPathComponent(component));
        inspect(url->URLByAppendingPathExtension(component));
        inspect(url->URLByDeletingLastPathComponent());
        inspect(url->URLByDeletingPathExtension());
    }
    return 0;
}
