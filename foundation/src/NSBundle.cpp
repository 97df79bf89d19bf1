#include <Foundation/NSBundle.h>

#include "file_io.h"
#include "localization_matching.h"
#include "property_list.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSLog.h>
#include <Foundation/process_environment.h>
#include <Foundation/string_format.h>
#include <Foundation/strings_table.h>

#include <objc/image.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace foundation::detail {

// A table's translations as ready-made strings.
using LoadedTable = std::unordered_map<std::u16string, objc::Strong<NSString>>;

struct BundleState {
    std::string path;
    objc::Strong<NSString> pathString;

    std::once_flag infoOnce;
    objc::Strong<NSDictionary> info;
    std::string developmentRegion = "en";

    std::once_flag localizationsOnce;
    std::vector<std::string> localizations;

    // Guards the caches below.
    std::mutex lock;
    const ProcessEnvironment* preferredFor = nullptr;
    std::vector<std::string> preferred;
    // Parsed tables by (localisation, table name); missing files are cached as empty tables.
    std::map<std::pair<std::string, std::string>, std::shared_ptr<const LoadedTable>> tables;
};

}  // namespace foundation::detail

using foundation::detail::BundleState;
using foundation::detail::LoadedTable;

OBJC_DEFINE_CLASS(NSBundle, NSObject, "NSBundle")
OBJC_REGISTER_CLASS(NSBundle)

void NSBundle::objcDefine(objc::ClassBuilder<NSBundle>& b) {
    b.classMethod<&NSBundle::imp_mainBundle>("mainBundle")
        .classMethod<&NSBundle::imp_bundleWithPath>("bundleWithPath:")
        .classMethod<&NSBundle::imp_preferredLocalizationsFromArray>(
            "preferredLocalizationsFromArray:forPreferences:")
        .method<&NSBundle::imp_initWithPath>("initWithPath:")
        .method<&NSBundle::imp_bundlePath>("bundlePath")
        .method<&NSBundle::imp_bundlePath>("resourcePath")
        .method<&NSBundle::imp_bundleIdentifier>("bundleIdentifier")
        .method<&NSBundle::imp_infoDictionary>("infoDictionary")
        .method<&NSBundle::imp_objectForInfoDictionaryKey>("objectForInfoDictionaryKey:")
        .method<&NSBundle::imp_pathForResourceOfType>("pathForResource:ofType:")
        .method<&NSBundle::imp_pathForResourceOfTypeInDirectory>(
            "pathForResource:ofType:inDirectory:")
        .method<&NSBundle::imp_localizations>("localizations")
        .method<&NSBundle::imp_developmentLocalization>("developmentLocalization")
        .method<&NSBundle::imp_preferredLocalizations>("preferredLocalizations")
        .method<&NSBundle::imp_localizedStringForKey>("localizedStringForKey:value:table:")
        .method<&NSBundle::imp_description>("description");
}

namespace {

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

// Absolute, without "." parts, doubled or trailing slashes.
std::string standardized(std::string path) {
    if (path.empty() || path[0] != '/') {
        std::string cwd(4096, '\0');
        if (::getcwd(cwd.data(), cwd.size()) != nullptr) {
            cwd.resize(std::char_traits<char>::length(cwd.c_str()));
            path = cwd + "/" + path;
        }
    }
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= path.size()) {
        const auto end = std::min(path.find('/', start), path.size());
        const std::string part = path.substr(start, end - start);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    std::string out;
    for (const auto& part : parts) out += "/" + part;
    return out.empty() ? "/" : out;
}

// One bundle per folder for the life of the process, as on the platform.
struct BundleRegistry {
    std::mutex lock;
    std::unordered_map<std::string, NSBundle*> bundles;
};

BundleRegistry& registry() {
    static auto* r = new BundleRegistry;  // bundles are immortal; so is their registry
    return *r;
}

NSString* autoreleased(const std::string& text) {
    return objc::autorelease(NSString::create(text).leak());
}

NSArray* arrayOfStrings(const std::vector<std::string>& items) {
    std::vector<objc::Strong<NSString>> strings;
    strings.reserve(items.size());
    for (const auto& item : items) strings.push_back(NSString::create(item));
    std::vector<id> objects(strings.begin(), strings.end());
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

std::vector<std::string> stringsOf(NSArray* array) {
    std::vector<std::string> out;
    if (array == nullptr) return out;
    for (id item : *array) {
        if (auto* s = objc::cast<NSString>(item)) out.push_back(s->utf8());
    }
    return out;
}

std::string textOf(NSString* s) {
    return s != nullptr ? s->utf8() : std::string();
}

void loadInfo(BundleState& state) {
    const std::string file = state.path + "/Info.plist";
    const auto bytes = foundation::detail::readFile(file);
    if (bytes) {
        const auto root = foundation::detail::decodePropertyList(
            *bytes, foundation::detail::PlistMutability::Immutable);
        if (auto* dictionary = objc::cast<NSDictionary>(root ? root->get() : nullptr)) {
            state.info = objc::retained(dictionary);
        } else {
            NSLog(NSSTR("NSBundle: ignoring %s: %s"), file.c_str(),
                  root ? "its top level is not a dictionary" : root.error().message.c_str());
        }
    }
    if (!state.info) state.info = NSDictionary::create({});
    if (auto* region =
            objc::cast<NSString>(state.info->objectForKey(NSSTR("CFBundleDevelopmentRegion")))) {
        if (region->length() > 0) state.developmentRegion = region->utf8();
    }
}

}  // namespace

NSBundle::NSBundle() : state_(std::make_unique<BundleState>()) {}
NSBundle::~NSBundle() = default;

const std::string& NSBundle::path() const noexcept {
    return state_->path;
}

NSBundle* NSBundle::forFolder(const std::string& rawPath, bool requireFolder) {
    const std::string path = standardized(rawPath);
    if (requireFolder && !isFolder(path)) return nullptr;
    BundleRegistry& r = registry();
    std::lock_guard guard(r.lock);
    NSBundle*& slot = r.bundles[path];
    if (slot == nullptr) {
        auto bundle = objc::adopt(objc::alloc<NSBundle>());
        bundle->state_->path = path;
        bundle->state_->pathString = NSString::create(path);
        bundle->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        slot = bundle.leak();
    }
    return slot;
}

NSBundle* NSBundle::imp_mainBundle(Class) {
    return forFolder(foundation::processEnvironment().mainBundlePath, false);
}

NSBundle* NSBundle::imp_bundleWithPath(Class, NSString* path) {
    if (path == nullptr || path->length() == 0) return nullptr;
    return forFolder(path->utf8(), true);
}

NSBundle* NSBundle::imp_initWithPath(NSString* path) {
    objc_release(this);
    return static_cast<NSBundle*>(objc_retain(bundleWithPath(path)));
}

NSArray* NSBundle::imp_preferredLocalizationsFromArray(Class, NSArray* available,
                                                       NSArray* preferences) {
    std::vector<std::string> preferred = stringsOf(preferences);
    if (preferences == nullptr) preferred = foundation::processEnvironment().preferredLanguages;
    return arrayOfStrings(
        foundation::detail::matchLocalizations(stringsOf(available), preferred, "en"));
}

NSString* NSBundle::imp_bundlePath() const {
    return state_->pathString;
}

NSDictionary* NSBundle::imp_infoDictionary() {
    std::call_once(state_->infoOnce, [this] { loadInfo(*state_); });
    return state_->info;
}

NSString* NSBundle::imp_bundleIdentifier() {
    return objc::cast<NSString>(infoDictionary()->objectForKey(NSSTR("CFBundleIdentifier")));
}

NSString* NSBundle::imp_developmentLocalization() {
    infoDictionary();
    return autoreleased(state_->developmentRegion);
}

id NSBundle::imp_objectForInfoDictionaryKey(NSString* key) {
    if (key == nullptr) return nullptr;
    const std::vector<std::string> preferred = preferredNames();
    if (!preferred.empty()) {
        if (NSString* localized = lookUp(preferred.front(), "InfoPlist", key)) return localized;
    }
    return infoDictionary()->objectForKey(key);
}

const std::vector<std::string>& NSBundle::folderLocalizations() {
    std::call_once(state_->localizationsOnce, [this] {
        auto& names = state_->localizations;
        if (DIR* dir = ::opendir(state_->path.c_str())) {
            while (const dirent* entry = ::readdir(dir)) {
                const std::string name = entry->d_name;
                constexpr std::string_view suffix = ".lproj";
                if (name.size() > suffix.size() &&
                    name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0 &&
                    isFolder(state_->path + "/" + name)) {
                    names.push_back(name.substr(0, name.size() - suffix.size()));
                }
            }
            ::closedir(dir);
        }
        std::sort(names.begin(), names.end());
    });
    return state_->localizations;
}

NSArray* NSBundle::imp_localizations() {
    return arrayOfStrings(folderLocalizations());
}

std::vector<std::string> NSBundle::preferredNames() {
    const auto& environment = foundation::processEnvironment();
    const auto& available = folderLocalizations();
    infoDictionary();  // the development region
    std::lock_guard guard(state_->lock);
    if (state_->preferredFor != &environment) {
        state_->preferred = foundation::detail::matchLocalizations(
            available, environment.preferredLanguages, state_->developmentRegion);
        state_->preferredFor = &environment;
    }
    return state_->preferred;
}

NSArray* NSBundle::imp_preferredLocalizations() {
    return arrayOfStrings(preferredNames());
}

NSString* NSBundle::lookUp(const std::string& localization, const std::string& table,
                           NSString* key) {
    std::shared_ptr<const LoadedTable> loaded;
    {
        std::lock_guard guard(state_->lock);
        if (auto it = state_->tables.find({localization, table}); it != state_->tables.end()) {
            loaded = it->second;
        }
    }
    if (!loaded) {
        // Parsed outside the lock; a thread that loses the race uses the winner's table.
        const std::string folder =
            localization.empty() ? state_->path : state_->path + "/" + localization + ".lproj";
        const std::string file = folder + "/" + table + ".strings";
        auto fresh = std::make_shared<LoadedTable>();
        if (const auto bytes = foundation::detail::readFile(file)) {
            if (auto parsed = foundation::parseStringsTable(*bytes)) {
                for (auto& [k, v] : *parsed) fresh->emplace(k, NSString::create(std::move(v)));
            } else {
                NSLog(NSSTR("NSBundle: %s is not a valid strings table; it is ignored"),
                      file.c_str());
            }
        }
        std::lock_guard guard(state_->lock);
        loaded = state_->tables.try_emplace({localization, table}, std::move(fresh)).first->second;
    }
    const auto it = loaded->find(key->units());
    return it != loaded->end() ? it->second.get() : nullptr;
}

NSString* NSBundle::imp_localizedStringForKey(NSString* key, NSString* value, NSString* table) {
    const bool hasValue = value != nullptr && value->length() > 0;
    if (key == nullptr) return hasValue ? value : NSSTR("");
    const std::string tableName =
        table != nullptr && table->length() > 0 ? table->utf8() : std::string("Localizable");
    std::vector<std::string> order;
    const std::vector<std::string> preferred = preferredNames();
    if (!preferred.empty()) order.push_back(preferred.front());
    order.push_back(state_->developmentRegion);
    order.emplace_back();  // a table beside the localisations, if any
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (std::find(order.begin(), order.begin() + static_cast<long>(i), order[i]) !=
            order.begin() + static_cast<long>(i)) {
            continue;
        }
        if (NSString* found = lookUp(order[i], tableName, key)) {
            return objc::autorelease(static_cast<NSString*>(objc_retain(found)));
        }
    }
    return hasValue ? value : key;
}

std::string NSBundle::findResource(const std::string& file, const std::string& subpath) {
    const std::string sub = subpath.empty() ? std::string() : "/" + subpath;
    std::vector<std::string> candidates{state_->path + sub + "/" + file};
    std::vector<std::string> localizations = preferredNames();
    infoDictionary();
    localizations.push_back(state_->developmentRegion);
    for (const auto& lang : localizations) {
        candidates.push_back(state_->path + sub + "/" + lang + ".lproj/" + file);
        if (!sub.empty())
            candidates.push_back(state_->path + "/" + lang + ".lproj" + sub + "/" + file);
    }
    for (const auto& candidate : candidates) {
        if (exists(candidate)) return candidate;
    }
    return {};
}

NSString* NSBundle::imp_pathForResourceOfTypeInDirectory(NSString* name, NSString* ext,
                                                         NSString* subpath) {
    std::string extension = textOf(ext);
    if (!extension.empty() && extension.front() == '.') extension.erase(0, 1);
    const std::string sub = textOf(subpath);
    if (name == nullptr || name->length() == 0) {
        // The platform answers the first file of the type.
        if (extension.empty()) return nullptr;
        const std::string folder = state_->path + (sub.empty() ? "" : "/" + sub);
        std::vector<std::string> matches;
        if (DIR* dir = ::opendir(folder.c_str())) {
            while (const dirent* entry = ::readdir(dir)) {
                const std::string file = entry->d_name;
                if (file.size() > extension.size() + 1 &&
                    file.compare(file.size() - extension.size() - 1, std::string::npos,
                                 "." + extension) == 0) {
                    matches.push_back(folder + "/" + file);
                }
            }
            ::closedir(dir);
        }
        if (matches.empty()) return nullptr;
        return autoreleased(*std::min_element(matches.begin(), matches.end()));
    }
    const std::string file = name->utf8() + (extension.empty() ? "" : "." + extension);
    if (file.find("..") != std::string::npos && file.find('/') != std::string::npos) {
        return nullptr;  // stays inside the bundle
    }
    const std::string found = findResource(file, sub);
    return found.empty() ? nullptr : autoreleased(found);
}

NSString* NSBundle::imp_pathForResourceOfType(NSString* name, NSString* ext) {
    return imp_pathForResourceOfTypeInDirectory(name, ext, nullptr);
}

NSString* NSBundle::imp_description() {
    return objc::format(NSSTR("NSBundle <%s>"), state_->path.c_str());
}
