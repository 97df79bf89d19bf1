// The class registry: creating, publishing and finding classes by name.
#include "internal.h"

#include <objc/exception.h>
#include <objc/string.h>

#include <dlfcn.h>

#include <cstdio>

namespace objc::detail {
namespace {

struct Registry {
    std::unordered_map<std::string, Class> classes;  // published, by name
    std::vector<std::unique_ptr<objc_class>> all;    // every class and metaclass
};

Registry& registry() {
    // Lives for the whole process: objects may be released from static
    // destructors of other images after this one has gone.
    static Registry* r = new Registry;
    return *r;
}

}  // namespace

std::mutex& runtimeLock() {
    static std::mutex* m = new std::mutex;
    return *m;
}

Class findClass(const std::string& name) {
    std::lock_guard lock(runtimeLock());
    auto& classes = registry().classes;
    const auto it = classes.find(name);
    return it == classes.end() ? nullptr : it->second;
}

Class createClass(const char* name, Class superclass, Allocator allocator) {
    std::lock_guard lock(runtimeLock());
    Registry& r = registry();
    if (r.classes.count(name) != 0) {
        raise(exception_name::InternalInconsistency, std::string("class defined twice: ") + name);
    }
    auto cls = std::make_unique<objc_class>();
    auto meta = std::make_unique<objc_class>();
    auto clsData = std::make_unique<ClassData>();
    auto metaData = std::make_unique<ClassData>();
    clsData->name = metaData->name = name;
    clsData->superclass = superclass;
    clsData->allocator = allocator != nullptr    ? allocator
                         : superclass != nullptr ? superclass->data_->allocator
                                                 : nullptr;
    metaData->isMeta = true;
    // The root metaclass inherits from the root class, so classes answer
    // the root's instance methods, as on the platform.
    metaData->superclass = superclass != nullptr ? superclass->isa_.load() : cls.get();
    // Metaclasses are instances of the root metaclass.
    Class rootMeta = meta.get();
    for (Class c = superclass; c != nullptr; c = c->data_->superclass) rootMeta = c->isa_.load();
    meta->isa_.store(rootMeta);
    cls->isa_.store(meta.get());
    cls->data_ = clsData.release();
    meta->data_ = metaData.release();
    if (superclass != nullptr) superclass->data_->subclasses.push_back(cls.get());
    meta->data_->superclass->data_->subclasses.push_back(meta.get());
    Class result = cls.get();
    r.all.push_back(std::move(cls));
    r.all.push_back(std::move(meta));
    return result;
}

Class classOfAnotherImage(const char* name, Allocator allocator) {
    Class first = nullptr;
    {
        std::lock_guard lock(runtimeLock());
        const auto it = registry().classes.find(name);
        if (it == registry().classes.end()) return nullptr;
        first = it->second;
    }
    // Each image has its own allocator for its C++ class; the same image
    // defining a name twice is a fault that createClass reports.
    Dl_info mine{}, theirs{};
    if (dladdr(reinterpret_cast<void*>(allocator), &mine) == 0 ||
        dladdr(reinterpret_cast<void*>(first->data_->allocator), &theirs) == 0 ||
        mine.dli_fbase == theirs.dli_fbase) {
        return nullptr;
    }
    std::fprintf(stderr, "objc: class %s is implemented in both %s and %s; the first is used.\n",
                 name, theirs.dli_fname, mine.dli_fname);
    return first;
}

void publishClass(Class cls) {
    std::lock_guard lock(runtimeLock());
    cls->data_->published = true;
    cls->isa_.load()->data_->published = true;
    registry().classes.emplace(cls->data_->name, cls);
}

}  // namespace objc::detail

using namespace objc::detail;

objc_class::objc_class() : cache_(&gEmptyCache) {
    // Classes live for the whole process; reference counting leaves them alone.
    refs_.store(kImmortalRefs, std::memory_order_relaxed);
}

objc_class::~objc_class() {
    delete data_;
}

Class objc_getClass(const char* name) {
    return name != nullptr ? findClass(name) : nullptr;
}

Class objc_getMetaClass(const char* name) {
    const Class cls = objc_getClass(name);
    return cls != nullptr ? cls->isa_.load() : nullptr;
}

Class objc_allocateClassPair(Class superclass, const char* name, std::size_t /*extraBytes*/) {
    if (name == nullptr || objc_getClass(name) != nullptr) return nullptr;
    try {
        return createClass(name, superclass, nullptr);
    } catch (const objc::Exception&) {
        return nullptr;  // lost a race for the name
    }
}

void objc_registerClassPair(Class cls) {
    if (cls != nullptr) publishClass(cls);
}

const char* class_getName(Class cls) {
    return cls != nullptr ? cls->data_->name.c_str() : "nil";
}

// A superclass is fixed when the class is created, so no lock is needed.
Class class_getSuperclass(Class cls) {
    return cls != nullptr ? cls->data_->superclass : nullptr;
}

bool class_isMetaClass(Class cls) {
    return cls != nullptr && cls->data_->isMeta;
}

Class object_getClass(id obj) {
    return obj != nullptr ? obj->isa_.load(std::memory_order_relaxed) : nullptr;
}

const char* object_getClassName(id obj) {
    return class_getName(object_getClass(obj));
}

Class NSClassFromString(NSString* name) {
    return name != nullptr ? objc_getClass(name->utf8().c_str()) : nullptr;
}

NSString* NSStringFromClass(Class cls) {
    if (cls == nullptr) return nullptr;
    return objc::autorelease(NSString::create(class_getName(cls)).leak());
}
