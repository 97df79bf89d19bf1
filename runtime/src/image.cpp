// Image loading: class creation and +load.
#include <objc/exception.h>
#include <objc/image.h>
#include <objc/message.h>

#include "internal.h"

#include <vector>

namespace objc {
namespace {

// +load runs only where the class itself defines it, not where it inherits it.
IMP ownLoadMethod(Class cls) {
    const Class meta = object_getClass(cls);
    std::lock_guard lock(detail::runtimeLock());
    const auto& methods = meta->data_->methodsBySelector;
    const auto it = methods.find(sel_registerName("load"));
    return it != methods.end() ? it->second->imp.load() : nullptr;
}

void runLoad(Class cls, const std::vector<Class>& image) {
    if (cls == nullptr || cls->data_->loaded) return;
    // Superclasses of the same image first.
    const Class super = class_getSuperclass(cls);
    for (Class c : image) {
        if (c == super) runLoad(super, image);
    }
    cls->data_->loaded = true;
    if (const IMP load = ownLoadMethod(cls)) callImp<void>(load, cls, sel_registerName("load"));
}

}  // namespace

void loadImage(std::initializer_list<ClassFunction> classes,
               std::initializer_list<Category> categories) {
    std::vector<Class> image;
    image.reserve(classes.size());
    for (const ClassFunction f : classes) image.push_back(f());
    for (const Category& c : categories) {
        const Class cls = objc_getClass(c.className);
        if (cls == nullptr) {
            raise(exception_name::InternalInconsistency,
                  std::string("category ") + c.name + " on a missing class " + c.className);
        }
        c.attach(cls);
    }
    for (const Class cls : image) runLoad(cls, image);
    for (const Category& c : categories) {
        if (c.load != nullptr) c.load(objc_getClass(c.className));
    }
}

}  // namespace objc
