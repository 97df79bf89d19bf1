// Small helpers for tests over Foundation values.
#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>
#include <objc/exception.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace testsupport {

// A test whose autoreleased objects go when it ends.
struct PoolTest : ::testing::Test {
    objc::AutoreleasePool pool;
};

// An autoreleased string, as @"..." would give.
inline NSString* S(const char* utf8) {
    return NSString::stringWithUTF8String(utf8);
}

inline std::string text(id s) {
    return s != nullptr ? static_cast<NSString*>(s)->utf8() : std::string("(nil)");
}

inline std::vector<std::string> texts(NSArray* array) {
    std::vector<std::string> out;
    for (id item : *array) out.push_back(text(item));
    return out;
}

// The name of the exception f raises, so that a wrong kind shows in the failure.
template <class F>
std::string raisedName(F&& f) {
    try {
        f();
    } catch (const objc::Exception& e) {
        return e.name();
    }
    return "nothing raised";
}

// A file of the fuzzers' seed corpus, e.g. "property_list/x.bplist", whole.
inline std::string corpusFile(const std::string& relative) {
    std::ifstream in(std::string(FUZZ_CORPUS_DIR) + "/" + relative, std::ios::binary);
    if (!in) throw std::runtime_error("no corpus file " + relative);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

}  // namespace testsupport
