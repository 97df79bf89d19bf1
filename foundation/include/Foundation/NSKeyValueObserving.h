// Key-value observing vocabulary: what observers ask for and what they are told.
#pragma once

#include <objc/object.h>
#include <objc/options.h>
#include <objc/string.h>

enum NSKeyValueObservingOptions : NSUInteger {
    NSKeyValueObservingOptionNew = 0x01,
    NSKeyValueObservingOptionOld = 0x02,
    NSKeyValueObservingOptionInitial = 0x04,
};
OBJC_OPTIONS(NSKeyValueObservingOptions);

enum NSKeyValueChange : NSUInteger {
    NSKeyValueChangeSetting = 1,
};

// Keys of the change dictionary.
PV_EXPORT extern NSString* const NSKeyValueChangeKindKey;  // "kind": an NSNumber NSKeyValueChange
PV_EXPORT extern NSString* const NSKeyValueChangeNewKey;   // "new"
PV_EXPORT extern NSString* const NSKeyValueChangeOldKey;   // "old"

// The message observers receive:
//   - (void)observeValueForKeyPath:(NSString*)keyPath ofObject:(id)object
//                            change:(NSDictionary*)change context:(void*)context;
namespace foundation {
inline SEL observeValueSelector() {
    return objc::sel<"observeValueForKeyPath:ofObject:change:context:">();
}
}  // namespace foundation
