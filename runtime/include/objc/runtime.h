// The runtime's C interface, under the names that Objective-C code uses.
#pragma once

#include <objc/types.h>

class NSString;

// Association policies, with the platform's values.
enum objc_AssociationPolicy : std::uintptr_t {
    OBJC_ASSOCIATION_ASSIGN = 0,
    OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
    OBJC_ASSOCIATION_COPY_NONATOMIC = 3,
    OBJC_ASSOCIATION_RETAIN = 01401,
    OBJC_ASSOCIATION_COPY = 01403,
};

// Selectors
SEL sel_registerName(const char* name);
const char* sel_getName(SEL sel);

// Classes
Class objc_getClass(const char* name);
Class objc_getMetaClass(const char* name);
Class objc_allocateClassPair(Class superclass, const char* name, std::size_t extraBytes);
void objc_registerClassPair(Class cls);
const char* class_getName(Class cls);
Class class_getSuperclass(Class cls);
bool class_isMetaClass(Class cls);
Method class_getInstanceMethod(Class cls, SEL sel);
Method class_getClassMethod(Class cls, SEL sel);
bool class_addMethod(Class cls, SEL sel, IMP imp, const char* types);
IMP class_replaceMethod(Class cls, SEL sel, IMP imp, const char* types);
IMP class_getMethodImplementation(Class cls, SEL sel);
bool class_respondsToSelector(Class cls, SEL sel);
// The methods the class itself defines, in the order they were added. The
// caller owns nothing: the list is a copy, the methods belong to the class.
Method* class_copyMethodList(Class cls, unsigned int* outCount);
Ivar class_getInstanceVariable(Class cls, const char* name);

// Methods
SEL method_getName(Method m);
IMP method_getImplementation(Method m);
IMP method_setImplementation(Method m, IMP imp);
void method_exchangeImplementations(Method m1, Method m2);
const char* method_getTypeEncoding(Method m);

// Instance variables
const char* ivar_getName(Ivar v);
const char* ivar_getTypeEncoding(Ivar v);
id object_getIvar(id obj, Ivar v);
void object_setIvar(id obj, Ivar v, id value);

// Objects
Class object_getClass(id obj);
const char* object_getClassName(id obj);
id class_createInstance(Class cls, std::size_t extraBytes);
id objc_retain(id obj);
void objc_release(id obj);
id objc_autorelease(id obj);
std::uint32_t objc_retainCount(id obj);
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* token);

// Associated objects
void objc_setAssociatedObject(id object, const void* key, id value, objc_AssociationPolicy policy);
id objc_getAssociatedObject(id object, const void* key);
void objc_removeAssociatedObjects(id object);

// Names
Class NSClassFromString(NSString* name);
NSString* NSStringFromClass(Class cls);
NSString* NSStringFromSelector(SEL sel);
SEL NSSelectorFromString(NSString* name);

// Size and alignment of the first type in an encoding; answers the position
// after it. Throws objc::EncodingError on a malformed encoding.
const char* NSGetSizeAndAlignment(const char* typePtr, NSUInteger* sizep, NSUInteger* alignp);
