// Loading an image's classes and running their +load methods.
#pragma once

#include <objc/types.h>

#include <initializer_list>

namespace objc {

using ClassFunction = Class (*)() noexcept;

// Methods added to an existing class, looked up by name when the image loads.
struct PV_EXPORT Category {
    const char* className;
    const char* name;
    void (*attach)(Class cls);
    void (*load)(Class cls) = nullptr;  // the category's own +load, if it has one
};

// Creates the image's classes (superclasses first) and attaches its
// categories, then runs +load once for every class of the list that defines
// one itself (superclasses first), then for the categories, in list order.
// Call it once from the image's initialiser.
PV_EXPORT void loadImage(std::initializer_list<ClassFunction> classes,
                         std::initializer_list<Category> categories = {});

}  // namespace objc

#define OBJC_IMAGE_CONCAT2(a, b) a##b
#define OBJC_IMAGE_CONCAT(a, b) OBJC_IMAGE_CONCAT2(a, b)

// Creates the class when its image loads, so that it can be found by name
// before C++ code touches it. Use at namespace scope in the class's .cpp.
#define OBJC_REGISTER_CLASS(T)                                                \
    namespace {                                                               \
    [[maybe_unused]] const bool OBJC_IMAGE_CONCAT(kRegistered, __COUNTER__) = \
        (::objc::loadImage({&T::objcClass}), true);                           \
    }
