#include "describe_class.h"

#include "terminal_text.h"

#include <objc/runtime.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace messenger {

namespace {

std::string imageOf(IMP imp) {
    Dl_info info{};
    if (imp == nullptr || dladdr(reinterpret_cast<void*>(imp), &info) == 0 ||
        info.dli_fname == nullptr) {
        return "?";
    }
    return std::filesystem::path(info.dli_fname).filename().string();
}

}  // namespace

int describeClass(const std::string& name, std::ostream& out, std::ostream& err) {
    const Class cls = objc_getClass(name.c_str());
    if (cls == nullptr) {
        err << "messenger: no class named " << printable(name) << "\n";
        return 1;
    }
    out << class_getName(cls);
    if (const Class super = class_getSuperclass(cls)) out << " : " << class_getName(super);
    out << "\n";
    unsigned int count = 0;
    const std::unique_ptr<Method, decltype(&std::free)> methods(class_copyMethodList(cls, &count),
                                                                &std::free);
    for (unsigned int i = 0; i < count; ++i) {
        const Method m = methods.get()[i];
        const char* types = method_getTypeEncoding(m);
        out << sel_getName(method_getName(m)) << '\t' << (types != nullptr ? types : "") << '\t'
            << imageOf(method_getImplementation(m)) << "\n";
    }
    return 0;
}

}  // namespace messenger
