// The runtime's interface from C: the header compiles as C and the plain names are found.
#define _GNU_SOURCE
#include <objc/runtime.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static int seven(id self, SEL cmd) {
    (void)self;
    (void)cmd;
    return 7;
}

static int failures = 0;

#define CHECK(cond)                                                            \
    do {                                                                       \
        if (!(cond)) {                                                         \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
            ++failures;                                                        \
        }                                                                      \
    } while (0)

int main(void) {
    const Class root = objc_getClass("NSObject");
    CHECK(root != NULL && strcmp(class_getName(root), "NSObject") == 0);

    const Class cls = objc_allocateClassPair(root, "CInterfaceTarget", 0);
    CHECK(cls != NULL);
    objc_registerClassPair(cls);
    CHECK(objc_getClass("CInterfaceTarget") == cls);

    const SEL number = sel_registerName("number");
    CHECK(class_addMethod(cls, number, (IMP)seven, "i@:"));
    const id obj = class_createInstance(cls, 0);
    CHECK(object_getClass(obj) == cls);
    int (*const numberImp)(id, SEL) = (int (*)(id, SEL))class_getMethodImplementation(cls, number);
    CHECK(numberImp(obj, number) == 7);
    objc_release(obj);

    // A malformed encoding answers NULL rather than unwinding through C.
    NSUInteger size = 1, alignment = 1;
    CHECK(NSGetSizeAndAlignment("{A=", &size, &alignment) == NULL && size == 0 && alignment == 0);

    // Unmangled: a plain symbol lookup finds the same function.
    void* const found = dlsym(RTLD_DEFAULT, "class_replaceMethod");
    CHECK(found != NULL && found == (void*)&class_replaceMethod);
    return failures == 0 ? 0 : 1;
}
