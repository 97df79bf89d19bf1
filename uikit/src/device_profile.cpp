#include <UIKit/device_profile.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <mutex>

namespace uikit {

namespace {

DeviceProfile make(std::string name, UIUserInterfaceIdiom idiom, CGFloat width, CGFloat height,
                   CGFloat scale, CGFloat nativeScale) {
    DeviceProfile p;
    p.name = std::move(name);
    p.idiom = idiom;
    p.screenSize = CGSizeMake(width, height);
    p.scale = scale;
    p.nativeScale = nativeScale;
    p.systemVersion = "9.3";
    return p;
}

struct NamedProfile {
    const char* name;
    DeviceProfile (*make)();
};

constexpr NamedProfile kNamedProfiles[] = {
    {"iphone", &DeviceProfile::defaultProfile}, {"ipad", &DeviceProfile::iPadAir2},
    {"iphone-4s", &DeviceProfile::iPhone4s},    {"iphone-5s", &DeviceProfile::iPhone5s},
    {"iphone-6s", &DeviceProfile::iPhone6s},    {"iphone-6s-plus", &DeviceProfile::iPhone6sPlus},
    {"ipad-air-2", &DeviceProfile::iPadAir2},   {"ipad-pro", &DeviceProfile::iPadPro},
};

struct CurrentDevice {
    std::mutex lock;
    DeviceProfile profile = DeviceProfile::defaultProfile();
};

CurrentDevice& current() {
    static CurrentDevice device;
    return device;
}

// The numeric parts of a version; nullopt when malformed.
std::optional<std::vector<long>> parseVersion(std::string_view text) {
    std::vector<long> parts;
    while (true) {
        long value = 0;
        const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (ec != std::errc() || end == text.data() || value < 0) return std::nullopt;
        parts.push_back(value);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty()) break;
        if (text.front() != '.' || parts.size() == 3) return std::nullopt;
        text.remove_prefix(1);
    }
    return parts;
}

}  // namespace

std::string DeviceProfile::genericModel() const {
    return idiom == UIUserInterfaceIdiomPad ? "iPad" : "iPhone";
}

DeviceProfile DeviceProfile::iPhone4s() {
    return make("iPhone 4s", UIUserInterfaceIdiomPhone, 320, 480, 2, 2);
}
DeviceProfile DeviceProfile::iPhone5s() {
    return make("iPhone 5s", UIUserInterfaceIdiomPhone, 320, 568, 2, 2);
}
DeviceProfile DeviceProfile::iPhone6s() {
    return make("iPhone 6s", UIUserInterfaceIdiomPhone, 375, 667, 2, 2);
}
DeviceProfile DeviceProfile::iPhone6sPlus() {
    // Drawn at @3x and downsampled to the 1080-pixel-wide panel.
    return make("iPhone 6s Plus", UIUserInterfaceIdiomPhone, 414, 736, 3, 2.608);
}
DeviceProfile DeviceProfile::iPadAir2() {
    return make("iPad Air 2", UIUserInterfaceIdiomPad, 768, 1024, 2, 2);
}
DeviceProfile DeviceProfile::iPadPro() {
    return make("iPad Pro", UIUserInterfaceIdiomPad, 1024, 1366, 2, 2);
}

std::optional<DeviceProfile> DeviceProfile::named(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const NamedProfile& entry : kNamedProfiles) {
        if (lower == entry.name) return entry.make();
    }
    return std::nullopt;
}

std::vector<std::string> DeviceProfile::knownNames() {
    std::vector<std::string> names;
    for (const NamedProfile& entry : kNamedProfiles) names.emplace_back(entry.name);
    return names;
}

void configureDevice(DeviceProfile profile) {
    CurrentDevice& device = current();
    std::lock_guard guard(device.lock);
    device.profile = std::move(profile);
}

DeviceProfile currentDeviceProfile() {
    CurrentDevice& device = current();
    std::lock_guard guard(device.lock);
    return device.profile;
}

bool isRightToLeftLanguage(std::string_view language) {
    const std::string_view code = language.substr(0, language.find_first_of("-_"));
    for (const std::string_view rtl :
         {"ar", "he", "iw", "fa", "ur", "ps", "sd", "ug", "yi", "dv", "ckb"}) {
        if (code == rtl) return true;
    }
    return false;
}

bool userInterfaceIsRightToLeft() {
    CurrentDevice& device = current();
    std::lock_guard guard(device.lock);
    const std::vector<std::string>& languages = device.profile.languages;
    return !languages.empty() && isRightToLeftLanguage(languages.front());
}

bool isValidSystemVersion(std::string_view version) {
    return parseVersion(version).has_value();
}

int compareSystemVersions(std::string_view a, std::string_view b) {
    const std::vector<long> left = parseVersion(a).value_or(std::vector<long>{});
    const std::vector<long> right = parseVersion(b).value_or(std::vector<long>{});
    for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
        const long l = i < left.size() ? left[i] : 0;
        const long r = i < right.size() ? right[i] : 0;
        if (l != r) return l < r ? -1 : 1;
    }
    return 0;
}

bool systemVersionAtLeast(std::string_view version) {
    return compareSystemVersions(currentDeviceProfile().systemVersion, version) >= 0;
}

}  // namespace uikit
