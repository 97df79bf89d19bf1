// Where the app's files live: its container (home), temporary folder and the
// standard folders inside the container.
#pragma once

#include <objc/object.h>
#include <objc/options.h>
#include <objc/string.h>

class NSArray;

enum NSSearchPathDirectory : NSUInteger {
    NSLibraryDirectory = 5,
    NSDocumentationDirectory = 8,
    NSDocumentDirectory = 9,
    NSCachesDirectory = 13,
    NSApplicationSupportDirectory = 14,
};

enum NSSearchPathDomainMask : NSUInteger {
    NSUserDomainMask = 1,
    NSLocalDomainMask = 2,
    NSNetworkDomainMask = 4,
    NSSystemDomainMask = 8,
    NSAllDomainsMask = 0x0ffff,
};
OBJC_OPTIONS(NSSearchPathDomainMask);

// The app's container, as configured (foundation::configureProcess), else HOME.
PV_EXPORT NSString* NSHomeDirectory();
// "<home>/tmp/" when the container has that folder (as on the device),
// otherwise TMPDIR or "/tmp/"; always with a trailing slash.
PV_EXPORT NSString* NSTemporaryDirectory();
// The folders of a kind in the domains: for the user domain "<home>/Library",
// "<home>/Documents", "<home>/Library/Caches", "<home>/Library/Application
// Support"; "~/..." when expandTilde is false. Other domains have none.
PV_EXPORT NSArray* NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                       NSSearchPathDomainMask domainMask,
                                                       bool expandTilde);
