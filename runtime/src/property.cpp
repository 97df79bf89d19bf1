// Declared properties: names and attribute strings a class publishes about
// its accessors, for code that inspects classes at run time.
#include "internal.h"

#include <objc/property.h>

#include <cstdlib>
#include <string>

using namespace objc::detail;

bool class_addProperty(Class cls, const char* name, const objc_property_attribute_t* attributes,
                       unsigned int attributeCount) {
    if (cls == nullptr || name == nullptr) return false;
    std::string text;
    for (unsigned int i = 0; i < attributeCount; ++i) {
        if (attributes[i].name == nullptr) return false;
        if (i != 0) text += ',';
        text += attributes[i].name;
        if (attributes[i].value != nullptr) text += attributes[i].value;
    }
    std::lock_guard lock(runtimeLock());
    auto& properties = cls->data_->properties;
    for (const auto& p : properties) {
        if (p->name == name) return false;
    }
    auto property = std::make_unique<objc_property>();
    property->name = name;
    property->attributes = std::move(text);
    properties.push_back(std::move(property));
    return true;
}

objc_property_t class_getProperty(Class cls, const char* name) {
    if (name == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    for (Class c = cls; c != nullptr; c = c->data_->superclass) {
        for (const auto& p : c->data_->properties) {
            if (p->name == name) return p.get();
        }
    }
    return nullptr;
}

objc_property_t* class_copyPropertyList(Class cls, unsigned int* outCount) {
    if (outCount != nullptr) *outCount = 0;
    if (cls == nullptr) return nullptr;
    std::lock_guard lock(runtimeLock());
    const auto& properties = cls->data_->properties;
    if (properties.empty()) return nullptr;
    // The caller frees the list with free(); the properties stay the class's.
    auto* list =
        static_cast<objc_property_t*>(std::calloc(properties.size() + 1, sizeof(objc_property_t)));
    if (list == nullptr) return nullptr;
    for (std::size_t i = 0; i < properties.size(); ++i) list[i] = properties[i].get();
    if (outCount != nullptr) *outCount = static_cast<unsigned int>(properties.size());
    return list;
}

const char* property_getName(objc_property_t property) {
    return property != nullptr ? property->name.c_str() : nullptr;
}

const char* property_getAttributes(objc_property_t property) {
    return property != nullptr ? property->attributes.c_str() : nullptr;
}
