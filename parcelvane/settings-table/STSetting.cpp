#include "settings-table/STSetting.h"

#include <Foundation/NSDictionary.h>
#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSUserDefaults.h>

#include <objc/exception.h>
#include <objc/image.h>

OBJC_DEFINE_CLASS(STSetting, NSObject, "STSetting")
OBJC_REGISTER_CLASS(STSetting)

void STSetting::objcDefine(objc::ClassBuilder<STSetting>& b) {
    b.classMethod<&STSetting::imp_settingWithKey>("settingWithKey:")
        .method<&STSetting::imp_initWithKey>("initWithKey:")
        .property<&STSetting::key_>("key", objc::Readonly | objc::Nonatomic)
        .method<&STSetting::imp_value>("value")
        .method<&STSetting::imp_setValue>("setValue:")
        .method<&STSetting::imp_valueDidChangeBlock>("valueDidChangeBlock")
        .method<&STSetting::imp_setValueDidChangeBlock>("setValueDidChangeBlock:")
        .method<&STSetting::imp_observeValueForKeyPath>(
            "observeValueForKeyPath:ofObject:change:context:")
        .method<&STSetting::imp_dealloc>("dealloc");
}

STSetting* STSetting::imp_settingWithKey(Class cls, NSString* key) {
    id setting = objc::msgSend<id>(cls, objc::sel<"alloc">());
    setting = objc::msgSend<id>(setting, objc::sel<"initWithKey:">(), key);
    return static_cast<STSetting*>(objc::autorelease(setting));
}

STSetting* STSetting::imp_initWithKey(NSString* key) {
    if (key == nullptr) return this;  // keyless: not even the base initialiser runs
    auto* self = static_cast<STSetting*>(objc::superSend<id>(this, objc::sel<"init">()));
    if (self == nullptr) return nullptr;
    self->key_ = objc::retained(key);
    self->observed_ = NSUserDefaults::standardUserDefaults();
    self->observed_->addObserver(self, key, NSKeyValueObservingOptionNew, nullptr);
    return self;
}

id STSetting::imp_value() {
    if (!key_) return nullptr;
    return NSUserDefaults::standardUserDefaults()->objectForKey(key_);
}

void STSetting::imp_setValue(id value) {
    if (!key_) return;
    // Identity, not equality: an equal but distinct object is written.
    if (this->value() == value) return;
    NSUserDefaults::standardUserDefaults()->setObjectForKey(value, key_);
}

void STSetting::imp_setValueDidChangeBlock(ChangeBlock* block) {
    valueDidChangeBlock_ =
        objc::adopt(static_cast<ChangeBlock*>(objc::msgSend<id>(block, objc::sel<"copy">())));
    // Held for the call: the handler may replace itself.
    if (const objc::Strong<ChangeBlock> handler = valueDidChangeBlock_) (*handler)();
}

void STSetting::imp_observeValueForKeyPath(NSString*, id, NSDictionary* change, void*) {
    id newValue = change->objectForKey(NSKeyValueChangeNewKey);
    try {
        setValue(newValue);
    } catch (const objc::Exception& e) {
        // A removed key is reported with the NSNull marker, which is not the
        // (now absent) stored value, so it is handed to setObject:forKey:.
        // The defaults hold property lists only and refuse it, which leaves
        // the key absent, exactly as the change says. That refusal is the
        // expected answer here: absorbing it lets the removal finish and
        // reach the other observers and this setting's handler. Any other
        // failure is not ours to hide.
        if (newValue != NSNull::null() || e.name() != objc::exception_name::InvalidArgument) throw;
    }
    // Held for the call: the handler may replace itself.
    if (const objc::Strong<ChangeBlock> handler = valueDidChangeBlock_) (*handler)();
}

void STSetting::imp_dealloc() {
    if (key_ && observed_ != nullptr) observed_->removeObserver(this, key_);
    objc::superSend<void>(this, objc::sel<"dealloc">());
}
