#include "support/ParcelvaneHelper.h"

#include <Foundation/NSBundle.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSDictionary.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIScreen.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(ParcelvaneHelper, NSObject, "ParcelvaneHelper")
OBJC_REGISTER_CLASS(ParcelvaneHelper)

void ParcelvaneHelper::objcDefine(objc::ClassBuilder<ParcelvaneHelper>& b) {
    b.classMethod<&ParcelvaneHelper::imp_preferencesPath>("preferencesPath")
        .classMethod<&ParcelvaneHelper::imp_preferencesChanged>("preferencesChanged")
        .classMethod<&ParcelvaneHelper::imp_isIOS90_OrGreater>("isIOS90_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isLowerThanIOS9>("isLowerThanIOS9")
        .classMethod<&ParcelvaneHelper::imp_isIOS83_OrGreater>("isIOS83_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isIOS80_OrGreater>("isIOS80_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isLowerThanIOS8>("isLowerThanIOS8")
        .classMethod<&ParcelvaneHelper::imp_isIOS70_OrGreater>("isIOS70_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isLowerThanIOS7>("isLowerThanIOS7")
        .classMethod<&ParcelvaneHelper::imp_isIOS60_OrGreater>("isIOS60_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isIOS50_OrGreater>("isIOS50_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isIOS40_OrGreater>("isIOS40_OrGreater")
        .classMethod<&ParcelvaneHelper::imp_isIPad>("isIPad")
        .classMethod<&ParcelvaneHelper::imp_isIPhone>("isIPhone")
        .classMethod<&ParcelvaneHelper::imp_isIPhone6_Plus>("isIPhone6_Plus")
        .classMethod<&ParcelvaneHelper::imp_isIPhone6>("isIPhone6")
        .classMethod<&ParcelvaneHelper::imp_isIPhone5>("isIPhone5")
        .classMethod<&ParcelvaneHelper::imp_isIPhone4_OrLess>("isIPhone4_OrLess")
        .classMethod<&ParcelvaneHelper::imp_isRetina>("isRetina")
        .classMethod<&ParcelvaneHelper::imp_screenWidth>("screenWidth")
        .classMethod<&ParcelvaneHelper::imp_screenHeight>("screenHeight")
        .classMethod<&ParcelvaneHelper::imp_screenMaxLength>("screenMaxLength")
        .classMethod<&ParcelvaneHelper::imp_screenMinLength>("screenMinLength")
        .classMethod<&ParcelvaneHelper::imp_isAppVersionGreaterThanOrEqualTo>(
            "isAppVersionGreaterThanOrEqualTo:")
        .classMethod<&ParcelvaneHelper::imp_isAppVersionLessThanOrEqualTo>(
            "isAppVersionLessThanOrEqualTo:")
        .classMethod<&ParcelvaneHelper::imp_isIOS60_OrGreater_was>("isIOS60_OrGreater_was:")
        .classMethod<&ParcelvaneHelper::imp_mainParcelvaneWindow>("mainParcelvaneWindow")
        .classMethod<&ParcelvaneHelper::imp_mainParcelvaneViewController>(
            "mainParcelvaneViewController")
        .classMethod<&ParcelvaneHelper::imp_calculateFileSizeInUnit>("calculateFileSizeInUnit:")
        .classMethod<&ParcelvaneHelper::imp_calculateUnit>("calculateUnit:")
        .classMethod<&ParcelvaneHelper::imp_floatToString>("floatToString:")
        .classMethod<&ParcelvaneHelper::imp_abbreviateNumber>("abbreviateNumber:")
        .classMethod<&ParcelvaneHelper::imp_translate>("translateToAR:toEN:toFR:")
        .classMethod<&ParcelvaneHelper::imp_showFilePicker>(
            "showFilePickerFromViewController:target:")
        .classMethod<&ParcelvaneHelper::imp_showAlertViewForExt>(
            "showAlertViewForExtFromViewController:WithTitle:msg:");
}

NSString* ParcelvaneHelper::imp_preferencesPath(Class) {
    return NSSTR("/User/Library/Preferences/com.tolbrenn.parcelvane.plist");
}

NSString* ParcelvaneHelper::imp_preferencesChanged(Class) {
    return NSSTR("com.tolbrenn.parcelvane.preferences-changed");
}

namespace {

// The system version as the platform's floatValue reads it: "8.4.1" is 8.4f.
float systemVersion() {
    return UIDevice::currentDevice()->systemVersion()->floatValue();
}

// Whether the device can tell its idiom (before iOS 3.2 it cannot).
bool answersIdiom(UIDevice* device) {
    return device->respondsToSelector(objc::sel<"userInterfaceIdiom">());
}

NSString* hostVersion() {
    return objc::cast<NSString>(
        NSBundle::mainBundle()->infoDictionary()->objectForKey(NSSTR("CFBundleVersion")));
}

}  // namespace

bool ParcelvaneHelper::imp_isIOS90_OrGreater(Class) {
    return systemVersion() >= 9.0f;
}
bool ParcelvaneHelper::imp_isLowerThanIOS9(Class) {
    return systemVersion() < 9.0f;
}
// The float widened against the double 8.3: 8.3f is a little above 8.3, so
// version 8.3 itself answers true.
bool ParcelvaneHelper::imp_isIOS83_OrGreater(Class) {
    return static_cast<double>(systemVersion()) >= 8.3;
}
bool ParcelvaneHelper::imp_isIOS80_OrGreater(Class) {
    return systemVersion() >= 8.0f;
}
bool ParcelvaneHelper::imp_isLowerThanIOS8(Class) {
    return systemVersion() < 8.0f;
}
bool ParcelvaneHelper::imp_isIOS70_OrGreater(Class) {
    return systemVersion() >= 7.0f;
}
bool ParcelvaneHelper::imp_isLowerThanIOS7(Class) {
    return systemVersion() < 7.0f;
}
bool ParcelvaneHelper::imp_isIOS60_OrGreater(Class) {
    return systemVersion() >= 6.0f;
}
bool ParcelvaneHelper::imp_isIOS50_OrGreater(Class) {
    return systemVersion() >= 5.0f;
}
bool ParcelvaneHelper::imp_isIOS40_OrGreater(Class) {
    return systemVersion() >= 4.0f;
}

bool ParcelvaneHelper::imp_isIPad(Class) {
    UIDevice* const device = UIDevice::currentDevice();
    return answersIdiom(device) && device->userInterfaceIdiom() == UIUserInterfaceIdiomPad;
}

bool ParcelvaneHelper::imp_isIPhone(Class) {
    UIDevice* const device = UIDevice::currentDevice();
    return !answersIdiom(device) || device->userInterfaceIdiom() == UIUserInterfaceIdiomPhone;
}

// Exact comparisons: the platform's screen sizes are whole points.
bool ParcelvaneHelper::imp_isIPhone6_Plus(Class) {
    return isIPhone() && screenMaxLength() == 736.0;
}
bool ParcelvaneHelper::imp_isIPhone6(Class) {
    return isIPhone() && screenMaxLength() == 667.0;
}
bool ParcelvaneHelper::imp_isIPhone5(Class) {
    return isIPhone() && screenMaxLength() == 568.0;
}
bool ParcelvaneHelper::imp_isIPhone4_OrLess(Class) {
    return isIPhone() && screenMaxLength() < 568.0;
}

bool ParcelvaneHelper::imp_isRetina(Class) {
    UIScreen* const screen = UIScreen::mainScreen();
    const CGFloat scale = isIOS80_OrGreater() ? screen->nativeScale() : screen->scale();
    return scale >= 2.0;
}

double ParcelvaneHelper::imp_screenWidth(Class) {
    return UIScreen::mainScreen()->bounds().size.width;
}
double ParcelvaneHelper::imp_screenHeight(Class) {
    return UIScreen::mainScreen()->bounds().size.height;
}

// Each answer is asked for again rather than kept from the comparison.
double ParcelvaneHelper::imp_screenMaxLength(Class) {
    if (screenWidth() > screenHeight()) return screenWidth();
    return screenHeight();
}
double ParcelvaneHelper::imp_screenMinLength(Class) {
    if (screenWidth() < screenHeight()) return screenWidth();
    return screenHeight();
}

// A host without a version sends compare: to nil, which answers 0: the same.
bool ParcelvaneHelper::imp_isAppVersionGreaterThanOrEqualTo(Class, NSString* version) {
    return objc::msgSend<NSComparisonResult>(hostVersion(), objc::sel<"compare:options:">(),
                                             version, NSNumericSearch) != NSOrderedAscending;
}
bool ParcelvaneHelper::imp_isAppVersionLessThanOrEqualTo(Class, NSString* version) {
    return objc::msgSend<NSComparisonResult>(hostVersion(), objc::sel<"compare:options:">(),
                                             version, NSNumericSearch) != NSOrderedDescending;
}

bool ParcelvaneHelper::imp_isIOS60_OrGreater_was(Class, NSString* text) {
    return NSCharacterSet::decimalDigitCharacterSet()->isSupersetOfSet(
        NSCharacterSet::characterSetWithCharactersInString(text));
}

id ParcelvaneHelper::imp_mainParcelvaneWindow(Class) {
    return nullptr;
}
id ParcelvaneHelper::imp_mainParcelvaneViewController(Class) {
    return nullptr;
}
