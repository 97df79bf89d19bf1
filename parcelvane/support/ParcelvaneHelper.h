// The library's helpers, as class methods of ParcelvaneHelper (the class has
// no instances): device and version queries (every query asks the platform
// afresh; none caches), size and number texts, the choice among the
// library's three translations, and the presentation of a file browser or an
// alert.
#pragma once

#include <objc/geometry.h>
#include <objc/object.h>
#include <objc/string.h>

class ParcelvaneHelper : public NSObject {
    OBJC_CLASS(ParcelvaneHelper)

    // "/User/Library/Preferences/com.tolbrenn.parcelvane.plist". The settings
    // live in the host's standard user defaults, not in this file.
    static NSString* preferencesPath() {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"preferencesPath">());
    }
    // "com.tolbrenn.parcelvane.preferences-changed"; nobody posts it.
    static NSString* preferencesChanged() {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"preferencesChanged">());
    }

    // System version, read as a float from -[UIDevice systemVersion] (so
    // "8.4.1" reads as 8.4).
    static bool isIOS90_OrGreater() { return ask<"isIOS90_OrGreater">(); }
    static bool isLowerThanIOS9() { return ask<"isLowerThanIOS9">(); }
    static bool isIOS83_OrGreater() { return ask<"isIOS83_OrGreater">(); }
    static bool isIOS80_OrGreater() { return ask<"isIOS80_OrGreater">(); }
    static bool isLowerThanIOS8() { return ask<"isLowerThanIOS8">(); }
    static bool isIOS70_OrGreater() { return ask<"isIOS70_OrGreater">(); }
    static bool isLowerThanIOS7() { return ask<"isLowerThanIOS7">(); }
    static bool isIOS60_OrGreater() { return ask<"isIOS60_OrGreater">(); }
    static bool isIOS50_OrGreater() { return ask<"isIOS50_OrGreater">(); }
    static bool isIOS40_OrGreater() { return ask<"isIOS40_OrGreater">(); }

    // Device kind and screen class, in points.
    static bool isIPad() { return ask<"isIPad">(); }
    static bool isIPhone() { return ask<"isIPhone">(); }
    static bool isIPhone6_Plus() { return ask<"isIPhone6_Plus">(); }
    static bool isIPhone6() { return ask<"isIPhone6">(); }
    static bool isIPhone5() { return ask<"isIPhone5">(); }
    static bool isIPhone4_OrLess() { return ask<"isIPhone4_OrLess">(); }
    static bool isRetina() { return ask<"isRetina">(); }

    // The main screen's bounds, in points.
    static double screenWidth() { return measure<"screenWidth">(); }
    static double screenHeight() { return measure<"screenHeight">(); }
    static double screenMaxLength() { return measure<"screenMaxLength">(); }
    static double screenMinLength() { return measure<"screenMinLength">(); }

    // The host's CFBundleVersion compared numerically with `version`; a host
    // without one compares as equal.
    static bool isAppVersionGreaterThanOrEqualTo(NSString* version) {
        return objc::msgSend<bool>(objcClass(), objc::sel<"isAppVersionGreaterThanOrEqualTo:">(),
                                   version);
    }
    static bool isAppVersionLessThanOrEqualTo(NSString* version) {
        return objc::msgSend<bool>(objcClass(), objc::sel<"isAppVersionLessThanOrEqualTo:">(),
                                   version);
    }

    // Whether every character of `text` is a decimal digit (the empty text
    // is). The name is historical: it does not look at the system version.
    static bool isIOS60_OrGreater_was(NSString* text) {
        return objc::msgSend<bool>(objcClass(), objc::sel<"isIOS60_OrGreater_was:">(), text);
    }

    // The library has no window or screen of its own: both answer nil.
    static id mainParcelvaneWindow() {
        return objc::msgSend<id>(objcClass(), objc::sel<"mainParcelvaneWindow">());
    }
    static id mainParcelvaneViewController() {
        return objc::msgSend<id>(objcClass(), objc::sel<"mainParcelvaneViewController">());
    }

    // ---- Formatting ----
    // A byte count in its display unit: bytes below 1024, then KB, MB and GB
    // in powers of 1024, in single precision and unrounded.
    static float calculateFileSizeInUnit(unsigned long long bytes) {
        return objc::msgSend<float>(objcClass(), objc::sel<"calculateFileSizeInUnit:">(), bytes);
    }
    // "Bytes", "KB", "MB" or "GB", by the same bands.
    static NSString* calculateUnit(unsigned long long bytes) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"calculateUnit:">(), bytes);
    }
    // One decimal, with trailing zeros (and a bare point) dropped: 2.0 -> "2".
    static NSString* floatToString(float value) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"floatToString:">(), value);
    }
    // 1234 -> "1.2K", 1500000 -> "1.5M"; numbers below 1000 as they are
    // (after a round trip through float).
    static NSString* abbreviateNumber(int number) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"abbreviateNumber:">(), number);
    }

    // ---- Localisation ----
    // The text for the main bundle's first preferred localisation: "ar" the
    // Arabic one (the English one when there is none), "fr" the French one
    // when there is one, anything else the English one.
    static NSString* translate(NSString* arabic, NSString* english, NSString* french) {
        return objc::msgSend<NSString*>(objcClass(), objc::sel<"translateToAR:toEN:toFR:">(),
                                        arabic, english, french);
    }

    // ---- Presentation ----
    // Presents, from the controller, a file browser at "/" with the target
    // as its delegate, in a navigation controller shown as a form sheet.
    static void showFilePicker(id presenter, id target) {
        objc::msgSend<void>(objcClass(), objc::sel<"showFilePickerFromViewController:target:">(),
                            presenter, target);
    }
    // Shows an alert with an "OK" button only; the controller is its delegate.
    static void showAlertViewForExt(id controller, NSString* title, NSString* message) {
        objc::msgSend<void>(objcClass(),
                            objc::sel<"showAlertViewForExtFromViewController:WithTitle:msg:">(),
                            controller, title, message);
    }

  private:
    template <objc::FixedString Name>
    static bool ask() {
        return objc::msgSend<bool>(objcClass(), objc::sel<Name>());
    }
    template <objc::FixedString Name>
    static double measure() {
        return objc::msgSend<double>(objcClass(), objc::sel<Name>());
    }

    static NSString* imp_preferencesPath(Class cls);
    static NSString* imp_preferencesChanged(Class cls);

    static bool imp_isIOS90_OrGreater(Class cls);
    static bool imp_isLowerThanIOS9(Class cls);
    static bool imp_isIOS83_OrGreater(Class cls);
    static bool imp_isIOS80_OrGreater(Class cls);
    static bool imp_isLowerThanIOS8(Class cls);
    static bool imp_isIOS70_OrGreater(Class cls);
    static bool imp_isLowerThanIOS7(Class cls);
    static bool imp_isIOS60_OrGreater(Class cls);
    static bool imp_isIOS50_OrGreater(Class cls);
    static bool imp_isIOS40_OrGreater(Class cls);

    static bool imp_isIPad(Class cls);
    static bool imp_isIPhone(Class cls);
    static bool imp_isIPhone6_Plus(Class cls);
    static bool imp_isIPhone6(Class cls);
    static bool imp_isIPhone5(Class cls);
    static bool imp_isIPhone4_OrLess(Class cls);
    static bool imp_isRetina(Class cls);

    static double imp_screenWidth(Class cls);
    static double imp_screenHeight(Class cls);
    static double imp_screenMaxLength(Class cls);
    static double imp_screenMinLength(Class cls);

    static bool imp_isAppVersionGreaterThanOrEqualTo(Class cls, NSString* version);
    static bool imp_isAppVersionLessThanOrEqualTo(Class cls, NSString* version);
    static bool imp_isIOS60_OrGreater_was(Class cls, NSString* text);
    static id imp_mainParcelvaneWindow(Class cls);
    static id imp_mainParcelvaneViewController(Class cls);

    // ParcelvaneHelper+Formatting.cpp
    static float imp_calculateFileSizeInUnit(Class cls, unsigned long long bytes);
    static NSString* imp_calculateUnit(Class cls, unsigned long long bytes);
    static NSString* imp_floatToString(Class cls, float value);
    static NSString* imp_abbreviateNumber(Class cls, int number);
    // ParcelvaneHelper+Localization.cpp
    static NSString* imp_translate(Class cls, NSString* arabic, NSString* english,
                                   NSString* french);
    // ParcelvaneHelper+Presentation.cpp
    static void imp_showFilePicker(Class cls, id presenter, id target);
    static void imp_showAlertViewForExt(Class cls, id controller, NSString* title,
                                        NSString* message);
};
