// One settings key bound to the standard user defaults. Reads and writes go
// straight to the defaults (nothing is cached); the setting observes its key
// and calls its value-did-change handler on every change of the key, by
// whoever makes it, and once when a handler is installed.
//
// A setting made from a nil key is inert: it reads nil, writes nothing and
// observes nothing.
#pragma once

#include <objc/block.h>
#include <objc/object.h>
#include <objc/string.h>

class NSDictionary;
class NSUserDefaults;

class STSetting : public NSObject {
    OBJC_CLASS(STSetting)

    using ChangeBlock = objc::Block<void()>;

    // A new autoreleased setting made by initWithKey:.
    static STSetting* settingWithKey(NSString* key) {
        return objc::msgSend<STSetting*>(objcClass(), objc::sel<"settingWithKey:">(), key);
    }
    STSetting* initWithKey(NSString* key) {
        return objc::msgSend<STSetting*>(this, objc::sel<"initWithKey:">(), key);
    }

    NSString* key() { return objc::msgSend<NSString*>(this, objc::sel<"key">()); }
    // What the standard defaults hold under the key, or nil.
    id value() { return objc::msgSend<id>(this, objc::sel<"value">()); }
    // Stores the object (nil removes the key) unless it is the very object
    // stored already.
    void setValue(id value) { objc::msgSend<void>(this, objc::sel<"setValue:">(), value); }

    ChangeBlock* valueDidChangeBlock() {
        return objc::msgSend<ChangeBlock*>(this, objc::sel<"valueDidChangeBlock">());
    }
    // Keeps a copy; a non-nil handler is called once at once.
    void setValueDidChangeBlock(ChangeBlock* block) {
        objc::msgSend<void>(this, objc::sel<"setValueDidChangeBlock:">(), block);
    }

  private:
    static STSetting* imp_settingWithKey(Class cls, NSString* key);
    STSetting* imp_initWithKey(NSString* key);
    id imp_value();
    void imp_setValue(id value);
    ChangeBlock* imp_valueDidChangeBlock() { return valueDidChangeBlock_.get(); }
    void imp_setValueDidChangeBlock(ChangeBlock* block);
    void imp_observeValueForKeyPath(NSString* keyPath, id object, NSDictionary* change,
                                    void* context);
    void imp_dealloc();

    objc::Strong<NSString> key_;
    objc::Strong<ChangeBlock> valueDidChangeBlock_;
    // The defaults this setting registered with (they never die). The
    // standard defaults may be replaced meanwhile (a test's fresh container);
    // the registration is removed from the object that holds it.
    NSUserDefaults* observed_ = nullptr;
};
