// Where the app's files live: its container (home), temporary folder and the
// standard folders inside the container.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

class NSArray;

using NSSearchPathDirectory = NSUInteger;
inline constexpr NSSearchPathDirectory NSLibraryDirectory = 5;
inline constexpr NSSearchPathDirectory NSDocumentationDirectory = 8;
inline constexpr NSSearchPathDirectory NSDocumentDirectory = 9;
inline constexpr NSSearchPathDirectory NSCachesDirectory = 13;
inline constexpr NSSearchPathDirectory NSApplicationSupportDirectory = 14;

using NSSearchPathDomainMask = NSUInteger;
inline constexpr NSSearchPathDomainMask NSUserDomainMask = 1;
inline constexpr NSSearchPathDomainMask NSLocalDomainMask = 2;
inline constexpr NSSearchPathDomainMask NSNetworkDomainMask = 4;
inline constexpr NSSearchPathDomainMask NSSystemDomainMask = 8;
inline constexpr NSSearchPathDomainMask NSAllDomainsMask = 0x0ffff;

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
