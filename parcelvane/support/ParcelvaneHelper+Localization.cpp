// ParcelvaneHelper's choice among the library's three translations.
#include "support/ParcelvaneHelper.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>

NSString* ParcelvaneHelper::imp_translate(Class, NSString* arabic, NSString* english,
                                          NSString* french) {
    // Exact codes only: a regional localisation such as "fr-CA" gets English.
    NSArray* const localizations =
        objc::msgSend<NSArray*>(NSBundle::mainBundle(), objc::sel<"preferredLocalizations">());
    NSString* const language =
        objc::cast<NSString>(objc::msgSend<id>(localizations, objc::sel<"firstObject">()));
    if (language == nullptr) return english;
    if (language->isEqualToString(NSSTR("ar"))) return arabic != nullptr ? arabic : english;
    if (language->isEqualToString(NSSTR("en"))) return english;
    if (language->isEqualToString(NSSTR("fr")) && french != nullptr) return french;
    return english;
}
