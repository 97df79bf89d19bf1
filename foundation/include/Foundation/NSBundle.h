// A folder of code and resources: the app's main bundle or any other.
// On this platform, as on the device, resources sit in the bundle folder
// itself, with localised ones in "<lang>.lproj" folders.
#pragma once

#include <objc/object.h>
#include <objc/string.h>

#include <memory>
#include <string>
#include <vector>

class NSArray;
class NSDictionary;

namespace foundation::detail {
struct BundleState;
}

class PV_EXPORT NSBundle : public NSObject {
    OBJC_CLASS(NSBundle)

    // The bundle at processEnvironment().mainBundlePath (the executable's
    // folder by default).
    static NSBundle* mainBundle() {
        return objc::msgSend<NSBundle*>(objcClass(), objc::sel<"mainBundle">());
    }
    // The bundle of the folder (one object per folder for the process), or
    // nil when the path is not a folder.
    static NSBundle* bundleWithPath(NSString* path) {
        return objc::msgSend<NSBundle*>(objcClass(), objc::sel<"bundleWithPath:">(), path);
    }
    // Answers the shared bundle of the folder (self is released), or nil.
    NSBundle* initWithPath(NSString* path) {
        return objc::msgSend<NSBundle*>(this, objc::sel<"initWithPath:">(), path);
    }

    NSString* bundlePath() { return objc::msgSend<NSString*>(this, objc::sel<"bundlePath">()); }
    NSString* resourcePath() { return objc::msgSend<NSString*>(this, objc::sel<"resourcePath">()); }
    // Info.plist's CFBundleIdentifier, or nil.
    NSString* bundleIdentifier() {
        return objc::msgSend<NSString*>(this, objc::sel<"bundleIdentifier">());
    }
    // Info.plist (XML or binary) in the bundle folder; empty when missing or unreadable.
    NSDictionary* infoDictionary() {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"infoDictionary">());
    }
    // The localised value (InfoPlist.strings) when there is one, else Info.plist's.
    id objectForInfoDictionaryKey(NSString* key) {
        return objc::msgSend<id>(this, objc::sel<"objectForInfoDictionaryKey:">(), key);
    }

    // The file "<name>.<ext>" (ext nil or empty: name as given) in the bundle
    // folder (or its subdirectory), else in the localised folders; nil when absent.
    NSString* pathForResource(NSString* name, NSString* ext) {
        return objc::msgSend<NSString*>(this, objc::sel<"pathForResource:ofType:">(), name, ext);
    }
    NSString* pathForResource(NSString* name, NSString* ext, NSString* subpath) {
        return objc::msgSend<NSString*>(this, objc::sel<"pathForResource:ofType:inDirectory:">(),
                                        name, ext, subpath);
    }

    // The names of the "*.lproj" folders, sorted.
    NSArray* localizations() { return objc::msgSend<NSArray*>(this, objc::sel<"localizations">()); }
    // CFBundleDevelopmentRegion, "en" by default.
    NSString* developmentLocalization() {
        return objc::msgSend<NSString*>(this, objc::sel<"developmentLocalization">());
    }
    // The bundle's localisations that match the user's preferred languages,
    // best first: for each language its exact localisation, else its parent
    // ("fr-CA" -> "fr"), else one of the same language ("pt" -> "pt-PT");
    // the development region when nothing matches. Never empty when the
    // bundle has a localisation.
    NSArray* preferredLocalizations() {
        return objc::msgSend<NSArray*>(this, objc::sel<"preferredLocalizations">());
    }
    // The translation from "<lang>.lproj/<table>.strings" (table nil:
    // "Localizable") for the first preferred localisation, then the
    // development region; a missing key answers value when it is not empty,
    // else the key.
    NSString* localizedStringForKey(NSString* key, NSString* value, NSString* table) {
        return objc::msgSend<NSString*>(this, objc::sel<"localizedStringForKey:value:table:">(),
                                        key, value, table);
    }

    // The localisations of `available` ordered for the preferred languages,
    // by the rules of preferredLocalizations (development region "en").
    static NSArray* preferredLocalizationsFromArray(NSArray* available, NSArray* preferences) {
        return objc::msgSend<NSArray*>(
            objcClass(), objc::sel<"preferredLocalizationsFromArray:forPreferences:">(), available,
            preferences);
    }

    // The folder, for C++ callers.
    const std::string& path() const noexcept;

    NSBundle();
    ~NSBundle() override;

  private:
    static NSBundle* imp_mainBundle(Class cls);
    static NSBundle* imp_bundleWithPath(Class cls, NSString* path);
    static NSArray* imp_preferredLocalizationsFromArray(Class cls, NSArray* available,
                                                        NSArray* preferences);
    NSBundle* imp_initWithPath(NSString* path);
    NSString* imp_bundlePath() const;
    NSString* imp_bundleIdentifier();
    NSDictionary* imp_infoDictionary();
    id imp_objectForInfoDictionaryKey(NSString* key);
    NSString* imp_pathForResourceOfType(NSString* name, NSString* ext);
    NSString* imp_pathForResourceOfTypeInDirectory(NSString* name, NSString* ext,
                                                   NSString* subpath);
    NSArray* imp_localizations();
    NSString* imp_developmentLocalization();
    NSArray* imp_preferredLocalizations();
    NSString* imp_localizedStringForKey(NSString* key, NSString* value, NSString* table);
    NSString* imp_description();

    // The one bundle of the folder, created on first request.
    static NSBundle* forFolder(const std::string& path, bool requireFolder);
    const std::vector<std::string>& folderLocalizations();
    std::vector<std::string> preferredNames();
    // The table's translation of the key for the localisation, or null.
    NSString* lookUp(const std::string& localization, const std::string& table, NSString* key);
    std::string findResource(const std::string& file, const std::string& subpath);

    std::unique_ptr<foundation::detail::BundleState> state_;
};

// The platform's shorthands for translations.
inline NSString* NSLocalizedString(NSString* key, NSString* /*comment*/) {
    return NSBundle::mainBundle()->localizedStringForKey(key, NSSTR(""), nullptr);
}
inline NSString* NSLocalizedStringFromTable(NSString* key, NSString* table, NSString* /*comment*/) {
    return NSBundle::mainBundle()->localizedStringForKey(key, NSSTR(""), table);
}
inline NSString* NSLocalizedStringFromTableInBundle(NSString* key, NSString* table,
                                                    NSBundle* bundle, NSString* /*comment*/) {
    return bundle->localizedStringForKey(key, NSSTR(""), table);
}
