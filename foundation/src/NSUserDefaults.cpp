#include <Foundation/NSUserDefaults.h>

#include "defaults_file.h"
#include "defaults_store.h"
#include "property_list.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNumber.h>
#include <Foundation/process_environment.h>

#include <objc/image.h>

#include <strings.h>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <vector>

using foundation::detail::DefaultsFile;
using foundation::detail::DefaultsStore;
using foundation::detail::Entries;
using foundation::detail::KeyRef;
using foundation::detail::StoredKey;

OBJC_DEFINE_CLASS(NSUserDefaults, NSObject, "NSUserDefaults")
OBJC_REGISTER_CLASS(NSUserDefaults)

void NSUserDefaults::objcDefine(objc::ClassBuilder<NSUserDefaults>& b) {
    b.classMethod<&NSUserDefaults::imp_standardUserDefaults>("standardUserDefaults")
        .classMethod<&NSUserDefaults::imp_resetStandardUserDefaults>("resetStandardUserDefaults")
        .method<&NSUserDefaults::imp_init>("init")
        .method<&NSUserDefaults::imp_initWithFilePath>("initWithFilePath:")
        .method<&NSUserDefaults::imp_objectForKey>("objectForKey:")
        .method<&NSUserDefaults::imp_setObjectForKey>("setObject:forKey:")
        .method<&NSUserDefaults::imp_removeObjectForKey>("removeObjectForKey:")
        .method<&NSUserDefaults::imp_synchronize>("synchronize")
        .method<&NSUserDefaults::imp_registerDefaults>("registerDefaults:")
        .method<&NSUserDefaults::imp_dictionaryRepresentation>("dictionaryRepresentation")
        .method<&NSUserDefaults::imp_boolForKey>("boolForKey:")
        .method<&NSUserDefaults::imp_integerForKey>("integerForKey:")
        .method<&NSUserDefaults::imp_floatForKey>("floatForKey:")
        .method<&NSUserDefaults::imp_doubleForKey>("doubleForKey:")
        .method<&NSUserDefaults::imp_stringForKey>("stringForKey:")
        .method<&NSUserDefaults::imp_arrayForKey>("arrayForKey:")
        .method<&NSUserDefaults::imp_dictionaryForKey>("dictionaryForKey:")
        .method<&NSUserDefaults::imp_dataForKey>("dataForKey:")
        .method<&NSUserDefaults::imp_setBoolForKey>("setBool:forKey:")
        .method<&NSUserDefaults::imp_setIntegerForKey>("setInteger:forKey:")
        .method<&NSUserDefaults::imp_setFloatForKey>("setFloat:forKey:")
        .method<&NSUserDefaults::imp_setDoubleForKey>("setDouble:forKey:")
        .method<&NSUserDefaults::imp_addObserver>("addObserver:forKeyPath:options:context:")
        .method<&NSUserDefaults::imp_removeObserver>("removeObserver:forKeyPath:")
        .method<&NSUserDefaults::imp_removeObserverContext>("removeObserver:forKeyPath:context:")
        .method<&NSUserDefaults::imp_valueForKey>("valueForKey:")
        .method<&NSUserDefaults::imp_setValueForKey>("setValue:forKey:");
}

namespace {

// The process's defaults. Replaced ones stay alive (immortal), since callers
// may still hold them.
std::atomic<NSUserDefaults*> standardDefaults{nullptr};
std::mutex standardLock;

std::string standardFilePath() {
    const auto& environment = foundation::processEnvironment();
    std::string name;
    if (NSString* identifier = NSBundle::mainBundle()->bundleIdentifier())
        name = identifier->utf8();
    if (name.empty() || name.find('/') != std::string::npos) name = program_invocation_short_name;
    return environment.homeDirectory + "/Library/Preferences/" + name + ".plist";
}

// The key as given, checked: nil and non-string keys are refused.
NSString* checkedKey(NSString* key, const char* method) {
    if (key == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("-[NSUserDefaults ") + method + "]: nil key");
    }
    if (!objc::isKindOf(key, NSString::objcClass())) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("-[NSUserDefaults ") + method + "]: key of class " +
                        object_getClassName(key) + " is not a string");
    }
    return key;
}

// An immutable copy of the key, as stored.
StoredKey storedKey(NSString* key) {
    auto copy = objc::adopt(static_cast<NSString*>(key->copy()));
    const NSUInteger hash = copy->hash();
    return StoredKey{std::move(copy), hash};
}

bool isLookupKey(NSString* key) {
    if (key == nullptr) return false;
    // Nearly every key is a plain string: one comparison before the class walk.
    static const Class stringClass = NSString::objcClass();
    return key->isa_.load(std::memory_order_relaxed) == stringClass ||
           objc::isKindOf(key, stringClass);
}

std::string trimmedLower(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\n\r");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t\n\r");
    std::string s = text.substr(first, last - first + 1);
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

}  // namespace

NSUserDefaults::NSUserDefaults() : store_(std::make_unique<DefaultsStore>(this)) {}

NSUserDefaults::~NSUserDefaults() = default;

objc::Strong<NSUserDefaults> NSUserDefaults::create(const std::string& filePath) {
    auto defaults = objc::adopt(objc::alloc<NSUserDefaults>());
    defaults->openFile(filePath);
    return defaults;
}

void NSUserDefaults::openFile(const std::string& path) {
    if (path.empty()) return;
    file_ = std::make_unique<DefaultsFile>(path, *store_);
    DefaultsFile* file = file_.get();
    store_->setChangeHandler([file] { file->changed(); });
}

std::string NSUserDefaults::filePath() const {
    return file_ ? file_->path() : std::string();
}

std::string NSUserDefaults::lastSaveError() const {
    return file_ ? file_->lastError() : std::string();
}

NSUserDefaults* NSUserDefaults::imp_standardUserDefaults(Class) {
    if (NSUserDefaults* d = standardDefaults.load(std::memory_order_acquire)) return d;
    std::lock_guard guard(standardLock);
    if (NSUserDefaults* d = standardDefaults.load(std::memory_order_acquire)) return d;
    NSUserDefaults* d = create(standardFilePath()).leak();
    d->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
    standardDefaults.store(d, std::memory_order_release);
    return d;
}

void NSUserDefaults::imp_resetStandardUserDefaults(Class) {
    std::lock_guard guard(standardLock);
    NSUserDefaults* old = standardDefaults.exchange(nullptr, std::memory_order_acq_rel);
    // The old object stays usable by whoever holds it, but in memory only:
    // the next standard defaults own the file now.
    if (old != nullptr && old->file_) old->file_->close();
}

NSUserDefaults* NSUserDefaults::imp_init() {
    objc_release(this);
    return static_cast<NSUserDefaults*>(objc_retain(standardUserDefaults()));
}

NSUserDefaults* NSUserDefaults::imp_initWithFilePath(NSString* path) {
    openFile(path != nullptr ? path->utf8() : std::string());
    return this;
}

id NSUserDefaults::imp_objectForKey(NSString* key) {
    if (!isLookupKey(key)) return nullptr;
    return objc_autorelease(store_->copyValue(foundation::detail::keyRef(key)));
}

void NSUserDefaults::imp_setObjectForKey(id value, NSString* key) {
    checkedKey(key, "setObject:forKey:");
    if (value == nullptr) {
        store_->set(storedKey(key), nullptr);
        return;
    }
    auto copy = foundation::detail::copyPropertyList(value);
    if (!copy) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSUserDefaults setObject:forKey:]: attempt to insert non-property list " +
                        copy.error().message + " for key \"" + key->utf8() + "\"");
    }
    store_->set(storedKey(key), std::move(*copy));
}

void NSUserDefaults::imp_removeObjectForKey(NSString* key) {
    checkedKey(key, "removeObjectForKey:");
    store_->set(storedKey(key), nullptr);
}

void NSUserDefaults::storeNumber(objc::Strong<objc_object> number, NSString* key,
                                 const char* method) {
    checkedKey(key, method);
    store_->set(storedKey(key), std::move(number));
}

void NSUserDefaults::imp_setBoolForKey(bool value, NSString* key) {
    storeNumber(NSNumber::create(value), key, "setBool:forKey:");
}
void NSUserDefaults::imp_setIntegerForKey(NSInteger value, NSString* key) {
    storeNumber(NSNumber::create(value), key, "setInteger:forKey:");
}
void NSUserDefaults::imp_setFloatForKey(float value, NSString* key) {
    storeNumber(NSNumber::create(value), key, "setFloat:forKey:");
}
void NSUserDefaults::imp_setDoubleForKey(double value, NSString* key) {
    storeNumber(NSNumber::create(value), key, "setDouble:forKey:");
}

bool NSUserDefaults::imp_synchronize() {
    return file_ ? file_->synchronize() : true;
}

void NSUserDefaults::imp_registerDefaults(NSDictionary* defaults) {
    if (defaults == nullptr) return;
    const auto copy = foundation::detail::copyPropertyList(defaults);
    auto* dictionary = objc::cast<NSDictionary>(copy ? copy->get() : nullptr);
    if (dictionary == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "-[NSUserDefaults registerDefaults:]: not a property list: " +
                        (copy ? std::string() : copy.error().message));
    }
    Entries entries;
    entries.reserve(dictionary->size());
    dictionary->forEach([&](id key, id value) {
        entries.emplace_back(objc::retained(static_cast<NSString*>(key)), objc::retained(value));
    });
    store_->registerDefaults(entries);
}

NSDictionary* NSUserDefaults::imp_dictionaryRepresentation() {
    const Entries entries = store_->effectiveEntries();
    std::vector<std::pair<id, id>> pairs;
    pairs.reserve(entries.size());
    for (const auto& [key, value] : entries) pairs.emplace_back(key.get(), value.get());
    return objc::autorelease(NSDictionary::create(pairs).leak());
}

bool NSUserDefaults::imp_boolForKey(NSString* key) {
    id value = objectForKey(key);
    if (auto* number = objc::cast<NSNumber>(value)) return number->boolValue();
    if (auto* string = objc::cast<NSString>(value)) {
        const std::string text = trimmedLower(string->utf8());
        if (text == "yes" || text == "true") return true;
        return std::strtoll(text.c_str(), nullptr, 10) != 0;
    }
    return false;
}

NSInteger NSUserDefaults::imp_integerForKey(NSString* key) {
    id value = objectForKey(key);
    if (auto* number = objc::cast<NSNumber>(value)) return number->integerValue();
    if (auto* string = objc::cast<NSString>(value)) {
        const std::string text = trimmedLower(string->utf8());
        if (text == "yes" || text == "true") return 1;
        return static_cast<NSInteger>(std::strtoll(text.c_str(), nullptr, 10));
    }
    return 0;
}

double NSUserDefaults::imp_doubleForKey(NSString* key) {
    id value = objectForKey(key);
    if (auto* number = objc::cast<NSNumber>(value)) return number->doubleValue();
    if (auto* string = objc::cast<NSString>(value)) {
        const std::string text = trimmedLower(string->utf8());
        if (text == "yes" || text == "true") return 1;
        return std::strtod(text.c_str(), nullptr);
    }
    return 0;
}

float NSUserDefaults::imp_floatForKey(NSString* key) {
    id value = objectForKey(key);
    if (auto* number = objc::cast<NSNumber>(value)) return number->floatValue();
    return static_cast<float>(doubleForKey(key));
}

NSString* NSUserDefaults::imp_stringForKey(NSString* key) {
    id value = objectForKey(key);
    if (auto* string = objc::cast<NSString>(value)) return string;
    if (auto* number = objc::cast<NSNumber>(value)) return number->stringValue();
    return nullptr;
}

NSArray* NSUserDefaults::imp_arrayForKey(NSString* key) {
    return objc::cast<NSArray>(objectForKey(key));
}

NSDictionary* NSUserDefaults::imp_dictionaryForKey(NSString* key) {
    return objc::cast<NSDictionary>(objectForKey(key));
}

NSData* NSUserDefaults::imp_dataForKey(NSString* key) {
    return objc::cast<NSData>(objectForKey(key));
}

void NSUserDefaults::imp_addObserver(id observer, NSString* keyPath,
                                     NSKeyValueObservingOptions options, void* context) {
    checkedKey(keyPath, "addObserver:forKeyPath:options:context:");
    if (observer == nullptr) return;
    store_->addObserver(observer, storedKey(keyPath), options, context);
}

namespace {
[[noreturn]] void notRegistered(id observer, NSString* keyPath, id defaults) {
    objc::raise(objc::exception_name::Range, std::string("Cannot remove an observer <") +
                                                 object_getClassName(observer) +
                                                 "> for the key path \"" + keyPath->utf8() +
                                                 "\" from <" + object_getClassName(defaults) +
                                                 "> because it is not registered as an observer.");
}
}  // namespace

void NSUserDefaults::imp_removeObserver(id observer, NSString* keyPath) {
    checkedKey(keyPath, "removeObserver:forKeyPath:");
    if (observer == nullptr) return;
    if (!store_->removeObserver(observer, foundation::detail::keyRef(keyPath), false, nullptr)) {
        notRegistered(observer, keyPath, this);
    }
}

void NSUserDefaults::imp_removeObserverContext(id observer, NSString* keyPath, void* context) {
    checkedKey(keyPath, "removeObserver:forKeyPath:context:");
    if (observer == nullptr) return;
    if (!store_->removeObserver(observer, foundation::detail::keyRef(keyPath), true, context)) {
        notRegistered(observer, keyPath, this);
    }
}
