// Declared properties, as the platform's runtime describes them: a name and
// an attribute string such as "T@?,C,N" (a copied, nonatomic block).
#pragma once

#include <objc/runtime.h>

typedef struct objc_property* objc_property_t;

// One attribute: its letter ("T", "C", "N", "V", ...) and its value, empty
// for flags.
typedef struct {
    const char* name;
    const char* value;
} objc_property_attribute_t;

#ifdef __cplusplus
extern "C" {
#endif

// False when the class already declares a property of that name.
PV_EXPORT bool class_addProperty(Class cls, const char* name,
                                 const objc_property_attribute_t* attributes,
                                 unsigned int attributeCount);
// Looks in the class, then its superclasses.
PV_EXPORT objc_property_t class_getProperty(Class cls, const char* name);
// The properties the class itself declares, in the order they were added,
// null-terminated; the caller frees the list with free().
PV_EXPORT objc_property_t* class_copyPropertyList(Class cls, unsigned int* outCount);
PV_EXPORT const char* property_getName(objc_property_t property);
PV_EXPORT const char* property_getAttributes(objc_property_t property);

#ifdef __cplusplus
}  // extern "C"
#endif
