#include "hooks/preferences.h"

#include "settings-table/STSetting.h"

#include <objc/message.h>
#include <objc/strong.h>

namespace {

// The setting is autoreleased into a pool of the call's own, so that it dies
// (and stops observing its key) before the caller sees the result. Messages
// to a nil value answer zero.
template <class R, objc::FixedString Conversion>
R readConverted(NSString* key) {
    const objc::AutoreleasePool pool;
    return objc::msgSend<R>(STSetting::settingWithKey(key)->value(), objc::sel<Conversion>());
}

}  // namespace

extern "C" {

BOOL GetBool(NSString* key) {
    return readConverted<BOOL, "boolValue">(key);
}

int GetInt(NSString* key) {
    return readConverted<int, "intValue">(key);
}

long long GetLongLong(NSString* key) {
    return readConverted<long long, "longLongValue">(key);
}

float GetFloat(NSString* key) {
    return readConverted<float, "floatValue">(key);
}

id GetValue(NSString* key) {
    objc::Strong<objc_object> value;
    {
        const objc::AutoreleasePool pool;
        value = objc::retained(STSetting::settingWithKey(key)->value());
    }
    return objc::autorelease(value.leak());
}

}  // extern "C"
