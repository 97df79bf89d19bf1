// PNG decoding, as UIImage reads image data.
#include <Foundation/NSData.h>
#include <UIKit/UIImage.h>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    objc::AutoreleasePool pool;
    if (UIImage* image = UIImage::imageWithData(NSData::create(fuzzing::bytes(data, size)))) {
        (void)image->size();
    }
    return 0;
}
