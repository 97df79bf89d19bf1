// The user's settings: property-list values by key, persisted per app, with
// key-value observing of single keys.
//
// Values are property lists only (NSString, NSNumber, NSData, NSDate, and
// NSArray / NSDictionary with NSString keys of those); anything else raises
// NSInvalidArgumentException and nothing is stored. Stored values are
// immutable deep copies. Every change of a key (setObject:forKey:,
// removeObjectForKey:, the typed setters, registerDefaults: where it changes
// what the key answers) tells the key's observers synchronously on the
// changing thread, after the change and with no lock held:
//   - observeValueForKeyPath:(key) ofObject:(defaults) change:(dict) context:(ctx)
// with change["kind"] = @1 and, when asked for, change["new"] / change["old"]
// holding the value or NSNull when there is none. Observers are not retained.
// Safe from any thread.
#pragma once

#include <Foundation/NSKeyValueObserving.h>

#include <objc/object.h>
#include <objc/string.h>

#include <memory>
#include <string>

class NSArray;
class NSData;
class NSDictionary;

namespace foundation::detail {
class DefaultsStore;
class DefaultsFile;
}  // namespace foundation::detail

class PV_EXPORT NSUserDefaults : public NSObject {
    OBJC_CLASS(NSUserDefaults)

    // The process's defaults, created on first use from processEnvironment():
    // "<home>/Library/Preferences/<main bundle identifier>.plist". It lives
    // for the process.
    static NSUserDefaults* standardUserDefaults() {
        return objc::msgSend<NSUserDefaults*>(objcClass(), objc::sel<"standardUserDefaults">());
    }
    // Writes the standard defaults and forgets them: the next
    // standardUserDefaults is created afresh (after configureProcess, say).
    static void resetStandardUserDefaults() {
        objc::msgSend<void>(objcClass(), objc::sel<"resetStandardUserDefaults">());
    }
    // Owned defaults kept in the given property-list file (loaded now,
    // written like the standard ones); an empty path keeps them in memory.
    static objc::Strong<NSUserDefaults> create(const std::string& filePath);
    // [[NSUserDefaults alloc] initWithFilePath:path]; -init answers the
    // standard defaults, as it shares their storage on the platform.
    NSUserDefaults* initWithFilePath(NSString* path) {
        return objc::msgSend<NSUserDefaults*>(this, objc::sel<"initWithFilePath:">(), path);
    }

    // Autoreleased: the value stays valid for the caller even if another
    // thread changes the key meanwhile. Falls back to registered defaults.
    id objectForKey(NSString* key) {
        return objc::msgSend<id>(this, objc::sel<"objectForKey:">(), key);
    }
    // nil removes the key.
    void setObjectForKey(id value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setObject:forKey:">(), value, key);
    }
    void removeObjectForKey(NSString* key) {
        objc::msgSend<void>(this, objc::sel<"removeObjectForKey:">(), key);
    }
    // Answers YES once the current values are durably on disk, NO when they
    // could not be written (see lastSaveError()); they stay pending and are
    // written by a later attempt.
    bool synchronize() { return objc::msgSend<bool>(this, objc::sel<"synchronize">()); }
    // Values answered for keys that have none; not saved.
    void registerDefaults(NSDictionary* defaults) {
        objc::msgSend<void>(this, objc::sel<"registerDefaults:">(), defaults);
    }
    // Registered defaults overlaid with the stored values, autoreleased.
    NSDictionary* dictionaryRepresentation() {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"dictionaryRepresentation">());
    }

    // Typed readers convert as the platform does: numbers and numeric
    // strings ("42", "YES", "true") for the scalar ones; the object ones
    // answer nil when the value is of another class (stringForKey: also
    // answers a number's text).
    bool boolForKey(NSString* key) {
        return objc::msgSend<bool>(this, objc::sel<"boolForKey:">(), key);
    }
    NSInteger integerForKey(NSString* key) {
        return objc::msgSend<NSInteger>(this, objc::sel<"integerForKey:">(), key);
    }
    float floatForKey(NSString* key) {
        return objc::msgSend<float>(this, objc::sel<"floatForKey:">(), key);
    }
    double doubleForKey(NSString* key) {
        return objc::msgSend<double>(this, objc::sel<"doubleForKey:">(), key);
    }
    NSString* stringForKey(NSString* key) {
        return objc::msgSend<NSString*>(this, objc::sel<"stringForKey:">(), key);
    }
    NSArray* arrayForKey(NSString* key) {
        return objc::msgSend<NSArray*>(this, objc::sel<"arrayForKey:">(), key);
    }
    NSDictionary* dictionaryForKey(NSString* key) {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"dictionaryForKey:">(), key);
    }
    NSData* dataForKey(NSString* key) {
        return objc::msgSend<NSData*>(this, objc::sel<"dataForKey:">(), key);
    }
    void setBoolForKey(bool value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setBool:forKey:">(), value, key);
    }
    void setIntegerForKey(NSInteger value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setInteger:forKey:">(), value, key);
    }
    void setFloatForKey(float value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setFloat:forKey:">(), value, key);
    }
    void setDoubleForKey(double value, NSString* key) {
        objc::msgSend<void>(this, objc::sel<"setDouble:forKey:">(), value, key);
    }

    // Key-value observing of one key (a key path without dots).
    // NSKeyValueObservingOptionInitial tells the observer once at once.
    void addObserver(id observer, NSString* keyPath, NSKeyValueObservingOptions options,
                     void* context) {
        objc::msgSend<void>(this, objc::sel<"addObserver:forKeyPath:options:context:">(), observer,
                            keyPath, options, context);
    }
    // Removes the most recent registration of the observer for the key;
    // raises NSRangeException when there is none. Once it returns the
    // observer is not called again for that registration, and no call is
    // running on another thread (unless this thread is itself inside a
    // notification).
    void removeObserver(id observer, NSString* keyPath) {
        objc::msgSend<void>(this, objc::sel<"removeObserver:forKeyPath:">(), observer, keyPath);
    }
    void removeObserver(id observer, NSString* keyPath, void* context) {
        objc::msgSend<void>(this, objc::sel<"removeObserver:forKeyPath:context:">(), observer,
                            keyPath, context);
    }

    // The file the values live in; empty for in-memory defaults.
    std::string filePath() const;
    // Why the latest write of that file failed, for telling the user; empty
    // when it succeeded.
    std::string lastSaveError() const;

    NSUserDefaults();
    ~NSUserDefaults() override;

  private:
    static NSUserDefaults* imp_standardUserDefaults(Class cls);
    static void imp_resetStandardUserDefaults(Class cls);
    NSUserDefaults* imp_init();
    NSUserDefaults* imp_initWithFilePath(NSString* path);
    id imp_objectForKey(NSString* key);
    void imp_setObjectForKey(id value, NSString* key);
    void imp_removeObjectForKey(NSString* key);
    bool imp_synchronize();
    void imp_registerDefaults(NSDictionary* defaults);
    NSDictionary* imp_dictionaryRepresentation();
    bool imp_boolForKey(NSString* key);
    NSInteger imp_integerForKey(NSString* key);
    float imp_floatForKey(NSString* key);
    double imp_doubleForKey(NSString* key);
    NSString* imp_stringForKey(NSString* key);
    NSArray* imp_arrayForKey(NSString* key);
    NSDictionary* imp_dictionaryForKey(NSString* key);
    NSData* imp_dataForKey(NSString* key);
    void imp_setBoolForKey(bool value, NSString* key);
    void imp_setIntegerForKey(NSInteger value, NSString* key);
    void imp_setFloatForKey(float value, NSString* key);
    void imp_setDoubleForKey(double value, NSString* key);
    void imp_addObserver(id observer, NSString* keyPath, NSKeyValueObservingOptions options,
                         void* context);
    void imp_removeObserver(id observer, NSString* keyPath);
    void imp_removeObserverContext(id observer, NSString* keyPath, void* context);
    id imp_valueForKey(NSString* key) { return imp_objectForKey(key); }
    void imp_setValueForKey(id value, NSString* key) { imp_setObjectForKey(value, key); }

    // Stores a number without checking it, which needs none.
    void storeNumber(objc::Strong<objc_object> number, NSString* key, const char* method);
    void openFile(const std::string& path);

    std::unique_ptr<foundation::detail::DefaultsStore> store_;
    std::unique_ptr<foundation::detail::DefaultsFile> file_;
};
