#include <Host/DebugViewController.h>

#include <Foundation/NSBundle.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSUserDefaults.h>

#include <objc/image.h>

#include <algorithm>
#include <utility>

OBJC_DEFINE_CLASS(DebugViewController, UIViewController, "DebugViewController")
OBJC_REGISTER_CLASS(DebugViewController)

void DebugViewController::objcDefine(objc::ClassBuilder<DebugViewController>& b) {
    b.method<&DebugViewController::imp_viewDidLoad>("viewDidLoad");
}

void DebugViewController::imp_viewDidLoad() {
    objc::superSend<void>(this, objc::sel<"viewDidLoad">());
    setTitle(NSSTR("Debug"));
}

namespace {
std::string text(id value) {
    if (value == nullptr) return "(none)";
    if (auto* s = objc::cast<NSString>(value)) return s->utf8();
    NSString* description = static_cast<NSObject*>(value)->description();
    return description != nullptr ? description->utf8() : std::string();
}
}  // namespace

std::vector<std::string> DebugViewController::lines() const {
    objc::AutoreleasePool pool;
    std::vector<std::string> out;
    id version = NSBundle::mainBundle()->objectForInfoDictionaryKey(NSSTR("CFBundleVersion"));
    out.push_back("Version: " + text(version));

    std::vector<std::pair<std::string, std::string>> entries;
    NSDictionary* defaults = NSUserDefaults::standardUserDefaults()->dictionaryRepresentation();
    if (defaults != nullptr) {
        defaults->forEach([&](id key, id value) { entries.emplace_back(text(key), text(value)); });
    }
    std::sort(entries.begin(), entries.end());
    for (const auto& [key, value] : entries) out.push_back(key + " = " + value);
    return out;
}
