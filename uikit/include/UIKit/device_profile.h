// The device the process pretends to run on: model, idiom, screen and system
// version. The host configures it once at start-up, before any library that
// asks UIDevice or UIScreen is loaded.
#pragma once

#include <UIKit/document_provider.h>

#include <objc/geometry.h>
#include <objc/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum UIUserInterfaceIdiom : NSInteger {
    UIUserInterfaceIdiomUnspecified = -1,
    UIUserInterfaceIdiomPhone = 0,
    UIUserInterfaceIdiomPad = 1,
};

namespace uikit {

struct PV_EXPORT DeviceProfile {
    std::string name;  // the marketing model name, "iPhone 6s"
    UIUserInterfaceIdiom idiom = UIUserInterfaceIdiomPhone;
    CGSize screenSize{};  // points, portrait
    CGFloat scale = 2.0;
    CGFloat nativeScale = 2.0;
    std::string systemVersion;           // "9.3"
    std::vector<std::string> languages;  // preferred first; empty: the process's
    // What the document menu offers, in order.
    std::vector<DocumentProvider> documentProviders = defaultDocumentProviders();

    // What -[UIDevice model] answers: "iPhone" or "iPad".
    std::string genericModel() const;

    // Real models' figures.
    static DeviceProfile iPhone4s();
    static DeviceProfile iPhone5s();
    static DeviceProfile iPhone6s();
    static DeviceProfile iPhone6sPlus();
    static DeviceProfile iPadAir2();
    static DeviceProfile iPadPro();
    // A recent iPhone on iOS 9.
    static DeviceProfile defaultProfile() { return iPhone6s(); }

    // A model by a short name: "iphone" (the default iPhone), "ipad" (an iPad
    // Air 2), or one of "iphone-4s", "iphone-5s", "iphone-6s",
    // "iphone-6s-plus", "ipad-air-2", "ipad-pro". Case-insensitive.
    static std::optional<DeviceProfile> named(std::string_view name);
    static std::vector<std::string> knownNames();
};

// Replaces the process's device; UIDevice and UIScreen answer from it from
// then on. Safe from any thread.
PV_EXPORT void configureDevice(DeviceProfile profile);
// A copy of the current device (the default profile until configured).
PV_EXPORT DeviceProfile currentDeviceProfile();

// Whether a language ("ar", "he-IL", "fa_IR") is written right to left.
PV_EXPORT bool isRightToLeftLanguage(std::string_view language);
// Whether the device's first language is, so that the interface is
// mirrored: rows start at the right, back buttons point right.
PV_EXPORT bool userInterfaceIsRightToLeft();

// Whether a version string is well formed: one to three dot-separated
// numbers ("9", "8.4", "7.1.2").
PV_EXPORT bool isValidSystemVersion(std::string_view version);
// Compares dotted versions numerically, missing parts counting as 0:
// negative, zero or positive as a is older, equal or newer than b.
PV_EXPORT int compareSystemVersions(std::string_view a, std::string_view b);
// The current device's system version is at least `version`.
PV_EXPORT bool systemVersionAtLeast(std::string_view version);

}  // namespace uikit
