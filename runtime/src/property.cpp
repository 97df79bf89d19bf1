// Declared properties: names and attribute strings a class publishes about
// its accessors, for code that inspects classes at run time.
#include "internal.h"

#include <objc/exception.h>
#include <objc/property.h>
#include <objc/property_accessors.h>

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

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

namespace objc::detail {

std::mutex& propertyLock(const void* slot) noexcept {
    // A few locks shared by all slots: accessors hold one only for a copy.
    static std::array<std::mutex, 64> locks;
    const auto address = reinterpret_cast<std::uintptr_t>(slot);
    return locks[(address >> 4) % locks.size()];
}

void badPropertyOptions(Class cls, const char* name, const char* why) {
    objc::raise(objc::exception_name::InvalidArgument,
                std::string("property ") + class_getName(cls) + "." + name + ": " + why);
}

void addProperty(Class cls, const char* name, const std::string& type, PropertyOptions options,
                 IMP getter, const char* getterTypes, IMP setter, const char* setterTypes) {
    const std::string property = name;
    const std::string getterName = options.getter != nullptr ? options.getter : property;
    std::string setterName;
    if (options.setter != nullptr) {
        setterName = options.setter;
    } else {
        setterName = "set" + property + ":";
        setterName[3] = static_cast<char>(std::toupper(static_cast<unsigned char>(setterName[3])));
    }
    class_replaceMethod(cls, sel_registerName(getterName.c_str()), getter, getterTypes);
    if (setter != nullptr) {
        class_replaceMethod(cls, sel_registerName(setterName.c_str()), setter, setterTypes);
    }

    // The platform's attribute string: T<type>,R,C|&|W,N,G<getter>,S<setter>,V<ivar>.
    const std::string ivar = "_" + property;
    std::vector<objc_property_attribute_t> attributes;
    attributes.push_back({"T", type.c_str()});
    if (setter == nullptr) attributes.push_back({"R", ""});
    if (options.has(PropertyOptions::kCopy)) {
        attributes.push_back({"C", ""});
    } else if (options.has(PropertyOptions::kWeak)) {
        attributes.push_back({"W", ""});
    } else if (type.starts_with('@') && !options.has(PropertyOptions::kAssign)) {
        attributes.push_back({"&", ""});
    }
    if (options.has(PropertyOptions::kNonatomic)) attributes.push_back({"N", ""});
    if (options.getter != nullptr) attributes.push_back({"G", options.getter});
    if (options.setter != nullptr && setter != nullptr) attributes.push_back({"S", options.setter});
    attributes.push_back({"V", ivar.c_str()});
    class_addProperty(cls, name, attributes.data(), static_cast<unsigned int>(attributes.size()));
}

}  // namespace objc::detail
