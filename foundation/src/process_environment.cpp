#include <Foundation/process_environment.h>

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <forward_list>
#include <mutex>
#include <sstream>

namespace foundation {
namespace {

std::string executableFolder() {
    std::string path(4096, '\0');
    const ssize_t n = ::readlink("/proc/self/exe", path.data(), path.size());
    if (n <= 0) return ".";
    path.resize(static_cast<std::size_t>(n));
    const auto slash = path.find_last_of('/');
    return slash == 0 ? "/" : slash == std::string::npos ? "." : path.substr(0, slash);
}

// "fr_CA.UTF-8" or "fr_CA@euro" -> "fr-CA"; "C" and "POSIX" say nothing.
std::string languageFromLocaleName(std::string name) {
    name = name.substr(0, name.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return {};
    for (char& c : name) {
        if (c == '_') c = '-';
    }
    return name;
}

std::vector<std::string> languagesFromEnvironment() {
    std::vector<std::string> languages;
    // LANGUAGE is a colon-separated preference list; the others name one locale.
    if (const char* list = std::getenv("LANGUAGE"); list != nullptr && *list != '\0') {
        std::stringstream in(list);
        for (std::string item; std::getline(in, item, ':');) {
            if (auto lang = languageFromLocaleName(item); !lang.empty()) languages.push_back(lang);
        }
    }
    if (languages.empty()) {
        for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* value = std::getenv(variable);
            if (value == nullptr || *value == '\0') continue;
            if (auto lang = languageFromLocaleName(value); !lang.empty()) {
                languages.push_back(lang);
            }
            break;
        }
    }
    if (languages.empty()) languages.emplace_back("en");
    return languages;
}

ProcessEnvironment withDefaults(ProcessEnvironment environment) {
    if (environment.homeDirectory.empty()) {
        const char* home = std::getenv("HOME");
        environment.homeDirectory = home != nullptr && *home != '\0' ? home : "/";
    }
    while (environment.homeDirectory.size() > 1 && environment.homeDirectory.back() == '/') {
        environment.homeDirectory.pop_back();
    }
    if (environment.mainBundlePath.empty()) environment.mainBundlePath = executableFolder();
    if (environment.preferredLanguages.empty()) {
        environment.preferredLanguages = languagesFromEnvironment();
    }
    return environment;
}

// Every configuration ever published stays alive, so that a reference handed
// out earlier never dangles; the process configures itself once or twice.
struct Registry {
    std::mutex lock;
    std::forward_list<ProcessEnvironment> versions;
    std::atomic<const ProcessEnvironment*> current{nullptr};
};

Registry& registry() {
    static auto* r = new Registry;  // never destroyed: readers may run during exit
    return *r;
}

}  // namespace

void configureProcess(ProcessEnvironment environment) {
    Registry& r = registry();
    ProcessEnvironment complete = withDefaults(std::move(environment));
    std::lock_guard guard(r.lock);
    r.versions.push_front(std::move(complete));
    r.current.store(&r.versions.front(), std::memory_order_release);
}

const ProcessEnvironment& processEnvironment() {
    Registry& r = registry();
    if (const ProcessEnvironment* e = r.current.load(std::memory_order_acquire)) return *e;
    std::lock_guard guard(r.lock);
    if (const ProcessEnvironment* e = r.current.load(std::memory_order_acquire)) return *e;
    r.versions.push_front(withDefaults({}));
    r.current.store(&r.versions.front(), std::memory_order_release);
    return r.versions.front();
}

}  // namespace foundation
