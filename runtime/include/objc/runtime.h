// The runtime's C interface, under the names that Objective-C code uses.
// It compiles as C too, and every function has C linkage, so that code in
// any language finds them by their plain names.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#include <objc/types.h>

class NSString;

// Association policies, with the platform's values.
enum objc_AssociationPolicy : uintptr_t {
#else
#include <objc/export.h>
#include <stdbool.h>

typedef struct objc_object* id;
typedef struct objc_class* Class;
typedef const struct objc_selector* SEL;
typedef struct objc_method* Method;
typedef struct objc_ivar* Ivar;
typedef void (*IMP)(void);
typedef bool BOOL;
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef struct NSString NSString;

// C has no enums of a fixed width; the values travel as uintptr_t.
typedef uintptr_t objc_AssociationPolicy;
enum {
#endif
    OBJC_ASSOCIATION_ASSIGN = 0,
    OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
    OBJC_ASSOCIATION_COPY_NONATOMIC = 3,
    OBJC_ASSOCIATION_RETAIN = 01401,
    OBJC_ASSOCIATION_COPY = 01403,
};

#ifdef __cplusplus
extern "C" {
#endif

// Selectors
PV_EXPORT SEL sel_registerName(const char* name);
PV_EXPORT const char* sel_getName(SEL sel);

// Classes
PV_EXPORT Class objc_getClass(const char* name);
PV_EXPORT Class objc_getMetaClass(const char* name);
PV_EXPORT Class objc_allocateClassPair(Class superclass, const char* name, size_t extraBytes);
PV_EXPORT void objc_registerClassPair(Class cls);
PV_EXPORT const char* class_getName(Class cls);
PV_EXPORT Class class_getSuperclass(Class cls);
PV_EXPORT bool class_isMetaClass(Class cls);
PV_EXPORT Method class_getInstanceMethod(Class cls, SEL sel);
PV_EXPORT Method class_getClassMethod(Class cls, SEL sel);
PV_EXPORT bool class_addMethod(Class cls, SEL sel, IMP imp, const char* types);
PV_EXPORT IMP class_replaceMethod(Class cls, SEL sel, IMP imp, const char* types);
PV_EXPORT IMP class_getMethodImplementation(Class cls, SEL sel);
PV_EXPORT bool class_respondsToSelector(Class cls, SEL sel);
// The methods the class itself defines, in the order they were added. The
// caller owns nothing: the list is a copy, the methods belong to the class.
PV_EXPORT Method* class_copyMethodList(Class cls, unsigned int* outCount);
PV_EXPORT Ivar class_getInstanceVariable(Class cls, const char* name);

// Methods
PV_EXPORT SEL method_getName(Method m);
PV_EXPORT IMP method_getImplementation(Method m);
PV_EXPORT IMP method_setImplementation(Method m, IMP imp);
PV_EXPORT void method_exchangeImplementations(Method m1, Method m2);
PV_EXPORT const char* method_getTypeEncoding(Method m);

// Instance variables
PV_EXPORT const char* ivar_getName(Ivar v);
PV_EXPORT const char* ivar_getTypeEncoding(Ivar v);
PV_EXPORT id object_getIvar(id obj, Ivar v);
PV_EXPORT void object_setIvar(id obj, Ivar v, id value);

// Objects
PV_EXPORT Class object_getClass(id obj);
PV_EXPORT const char* object_getClassName(id obj);
PV_EXPORT id class_createInstance(Class cls, size_t extraBytes);
PV_EXPORT id objc_retain(id obj);
PV_EXPORT void objc_release(id obj);
PV_EXPORT id objc_autorelease(id obj);
PV_EXPORT uint32_t objc_retainCount(id obj);
PV_EXPORT void* objc_autoreleasePoolPush(void);
PV_EXPORT void objc_autoreleasePoolPop(void* token);

// Associated objects
PV_EXPORT void objc_setAssociatedObject(id object, const void* key, id value,
                                        objc_AssociationPolicy policy);
PV_EXPORT id objc_getAssociatedObject(id object, const void* key);
PV_EXPORT void objc_removeAssociatedObjects(id object);

// Names
PV_EXPORT Class NSClassFromString(NSString* name);
PV_EXPORT NSString* NSStringFromClass(Class cls);
PV_EXPORT NSString* NSStringFromSelector(SEL sel);
PV_EXPORT SEL NSSelectorFromString(NSString* name);

// Size and alignment of the first type in an encoding; answers the position
// after it. Never throws: a malformed or null encoding answers NULL, with zero
// size and alignment (C++ code that wants the reason calls
// objc::getSizeAndAlignment, which throws objc::EncodingError).
PV_EXPORT const char* NSGetSizeAndAlignment(const char* typePtr, NSUInteger* sizep,
                                            NSUInteger* alignp);

#ifdef __cplusplus
}  // extern "C"
#endif
