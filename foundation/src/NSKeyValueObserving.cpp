#include <Foundation/NSKeyValueObserving.h>

NSString* const NSKeyValueChangeKindKey = objc::constantString("kind");
NSString* const NSKeyValueChangeNewKey = objc::constantString("new");
NSString* const NSKeyValueChangeOldKey = objc::constantString("old");
