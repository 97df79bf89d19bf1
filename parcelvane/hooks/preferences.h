// Typed reads of a settings key, exported for whoever loads the library.
// Each call asks a fresh STSetting, and so the standard user defaults at the
// moment of the call: nothing is cached. An absent key reads as NO, 0 or 0.0
// (GetValue: nil). The setting is gone, and no longer observes the key, when
// the call returns.
#pragma once

#include <objc/types.h>

class NSString;

extern "C" {

PV_EXPORT BOOL GetBool(NSString* key);
PV_EXPORT int GetInt(NSString* key);
PV_EXPORT long long GetLongLong(NSString* key);
PV_EXPORT float GetFloat(NSString* key);
// The stored object itself, autoreleased into the caller's pool.
PV_EXPORT id GetValue(NSString* key);

}  // extern "C"
