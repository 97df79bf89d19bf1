// .strings tables: text in any of their encodings, or compiled property lists.
#include <Foundation/strings_table.h>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)foundation::parseStringsTable(fuzzing::bytes(data, size));
    return 0;
}
