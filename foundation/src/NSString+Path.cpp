// NSString's path methods: '/'-separated file-system paths.
#include "string_internal.h"

#include <Foundation/NSArray.h>
#include <objc/image.h>

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace {

using namespace foundation::text;
using Path = std::u16string;

// Without trailing slashes, except for the root itself.
Path trimTrailingSlashes(Path p) {
    while (p.size() > 1 && p.back() == u'/') p.pop_back();
    return p;
}

// Runs of slashes collapsed to one, trailing slash removed.
Path collapseSlashes(const Path& p) {
    Path out;
    out.reserve(p.size());
    for (const char16_t c : p) {
        if (c == u'/' && !out.empty() && out.back() == u'/') continue;
        out.push_back(c);
    }
    return trimTrailingSlashes(std::move(out));
}

Path lastComponent(const Path& path) {
    const Path p = trimTrailingSlashes(path);
    if (p == u"/") return p;
    const std::size_t slash = p.rfind(u'/');
    return slash == Path::npos ? p : p.substr(slash + 1);
}

// The position of the extension's dot in the last component of a trimmed
// path, or npos. A leading dot names a hidden file, not an extension.
std::size_t extensionDot(const Path& p) {
    const std::size_t slash = p.rfind(u'/');
    const std::size_t start = slash == Path::npos ? 0 : slash + 1;
    const std::size_t dot = p.rfind(u'.');
    if (dot == Path::npos || dot <= start || dot + 1 == p.size()) return Path::npos;
    return dot;
}

NSString* lastPathComponent(NSString* self, SEL) {
    return makeString(lastComponent(self->units()));
}

NSString* pathExtension(NSString* self, SEL) {
    const Path p = trimTrailingSlashes(self->units());
    const std::size_t dot = extensionDot(p);
    return makeString(dot == Path::npos ? Path() : p.substr(dot + 1));
}

NSString* stringByDeletingLastPathComponent(NSString* self, SEL) {
    const Path p = collapseSlashes(self->units());
    if (p == u"/") return makeString(p);
    const std::size_t slash = p.rfind(u'/');
    if (slash == Path::npos) return makeString(Path());
    if (slash == 0) return makeString(Path(u"/"));
    return makeString(p.substr(0, slash));
}

NSString* stringByAppendingPathComponent(NSString* self, SEL, NSString* component) {
    const Path& c = unitsOf(component, "-[NSString stringByAppendingPathComponent:]");
    const Path& p = self->units();
    if (p.empty()) return makeString(collapseSlashes(c));
    if (c.empty()) return makeString(collapseSlashes(p));
    return makeString(collapseSlashes(p + u"/" + c));
}

NSString* stringByDeletingPathExtension(NSString* self, SEL) {
    const Path p = trimTrailingSlashes(self->units());
    const std::size_t dot = extensionDot(p);
    return makeString(dot == Path::npos ? p : p.substr(0, dot));
}

NSString* stringByAppendingPathExtension(NSString* self, SEL, NSString* extension) {
    const Path& e = unitsOf(extension, "-[NSString stringByAppendingPathExtension:]");
    const Path p = trimTrailingSlashes(self->units());
    if (p.empty() || p == u"/" || p.back() == u'~' || e.find(u'/') != Path::npos) return nullptr;
    return makeString(p + u"." + e);
}

std::vector<Path> components(const Path& p) {
    std::vector<Path> parts;
    if (p.empty()) return parts;
    if (p.front() == u'/') parts.emplace_back(u"/");
    std::size_t from = 0;
    while (from < p.size()) {
        std::size_t slash = p.find(u'/', from);
        if (slash == Path::npos) slash = p.size();
        if (slash > from) parts.push_back(p.substr(from, slash - from));
        from = slash + 1;
    }
    // A trailing slash is a component of its own, as the platform lists it.
    if (p.size() > 1 && p.back() == u'/') parts.emplace_back(u"/");
    return parts;
}

NSArray* pathComponents(NSString* self, SEL) {
    std::vector<objc::Strong<NSString>> strings;
    std::vector<id> objects;
    for (Path& part : components(self->units())) {
        strings.push_back(NSString::create(std::move(part)));
        objects.push_back(strings.back().get());
    }
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

bool isAbsolutePath(NSString* self, SEL) {
    const Path& p = self->units();
    return !p.empty() && (p.front() == u'/' || p.front() == u'~');
}

std::string homeOf(const std::string& user) {
    if (user.empty()) {
        if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
    }
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    const int rc = user.empty()
                       ? getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)
                       : getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found);
    return rc == 0 && found != nullptr && found->pw_dir != nullptr ? found->pw_dir : std::string();
}

// "~" and "~user" at the start become the home folder; unknown users stay as written.
Path expandTilde(const Path& p) {
    if (p.empty() || p.front() != u'~') return p;
    const std::size_t slash = p.find(u'/');
    const Path user = p.substr(1, slash == Path::npos ? Path::npos : slash - 1);
    const std::string home = homeOf(objc::utf16ToUtf8(user));
    if (home.empty()) return p;
    return collapseSlashes(objc::utf8ToUtf16(home) +
                           (slash == Path::npos ? Path() : p.substr(slash)));
}

NSString* stringByExpandingTildeInPath(NSString* self, SEL) {
    return makeString(expandTilde(self->units()));
}

// "." and empty components dropped; ".." resolved in absolute paths only.
NSString* stringByStandardizingPath(NSString* self, SEL) {
    const Path p = expandTilde(self->units());
    if (p.empty()) return makeString(p);
    const bool absolute = p.front() == u'/';
    std::vector<Path> kept;
    for (Path& part : components(p)) {
        if (part == u"/" || part == u".") continue;
        if (part == u".." && absolute) {
            if (!kept.empty()) kept.pop_back();
            continue;
        }
        kept.push_back(std::move(part));
    }
    Path out = absolute ? u"/" : u"";
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (i > 0) out.push_back(u'/');
        out += kept[i];
    }
    if (out.empty() && !absolute) out = u".";
    return makeString(std::move(out));
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&lastPathComponent>("lastPathComponent")
        .imp<&pathExtension>("pathExtension")
        .imp<&pathComponents>("pathComponents")
        .imp<&isAbsolutePath>("isAbsolutePath")
        .imp<&stringByDeletingLastPathComponent>("stringByDeletingLastPathComponent")
        .imp<&stringByAppendingPathComponent>("stringByAppendingPathComponent:")
        .imp<&stringByDeletingPathExtension>("stringByDeletingPathExtension")
        .imp<&stringByAppendingPathExtension>("stringByAppendingPathExtension:")
        .imp<&stringByExpandingTildeInPath>("stringByExpandingTildeInPath")
        .imp<&stringByStandardizingPath>("stringByStandardizingPath");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "FoundationPaths", &attach}}), true);

}  // namespace
