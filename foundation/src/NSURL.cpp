#include <Foundation/NSURL.h>

#include <Foundation/NSNumber.h>

#include "percent_encoding.h"
#include "string_internal.h"

#include <objc/image.h>

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

OBJC_DEFINE_CLASS(NSURL, NSObject, "NSURL")
OBJC_REGISTER_CLASS(NSURL)

namespace {

using foundation::text::makeString;

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Characters RFC 3986 allows anywhere in a URL: unreserved, reserved and '%'.
bool isUrlCharacter(char c) {
    return isAlpha(c) || isDigit(c) ||
           (c != '\0' && std::strchr("-._~:/?#[]@!$&'()*+,;=%", c) != nullptr);
}

bool validScheme(std::string_view s) {
    if (s.empty() || !isAlpha(s[0])) return false;
    for (const char c : s) {
        if (!isAlpha(c) && !isDigit(c) && c != '+' && c != '-' && c != '.') return false;
    }
    return true;
}

std::string currentDirectory() {
    std::vector<char> buffer(PATH_MAX);
    while (getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) return "/";
        buffer.resize(buffer.size() * 2);
    }
    return buffer.data();
}

bool isDirectoryOnDisk(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string encodePathComponent(std::string_view utf8) {
    return foundation::text::percentEncode(utf8, *NSCharacterSet::URLPathAllowedCharacterSet());
}

NSString* decoded(const std::string& text) {
    const auto d = foundation::text::percentDecode(text);
    return d ? makeString(std::string_view(*d)) : nullptr;
}

}  // namespace

bool NSURL::parse(std::string text) {
    if (text.empty()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isUrlCharacter(text[i])) return false;
        if (text[i] == '%' &&
            (i + 2 >= text.size() || !isHex(text[i + 1]) || !isHex(text[i + 2]))) {
            return false;
        }
    }
    std::string_view rest(text);
    if (const std::size_t colon = rest.find(':');
        colon != std::string_view::npos && colon < rest.find_first_of("/?#")) {
        if (!validScheme(rest.substr(0, colon))) return false;
        scheme_ = rest.substr(0, colon);
        rest.remove_prefix(colon + 1);
    }
    if (const std::size_t hash = rest.find('#'); hash != std::string_view::npos) {
        hasFragment_ = true;
        fragment_ = rest.substr(hash + 1);
        rest = rest.substr(0, hash);
        if (fragment_.find_first_of("#[]") != std::string::npos) return false;
    }
    if (const std::size_t question = rest.find('?'); question != std::string_view::npos) {
        hasQuery_ = true;
        query_ = rest.substr(question + 1);
        rest = rest.substr(0, question);
        if (query_.find_first_of("[]") != std::string::npos) return false;
    }
    if (rest.starts_with("//")) {
        hasAuthority_ = true;
        rest.remove_prefix(2);
        const std::size_t slash = rest.find('/');
        std::string_view authority = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash);
        if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
            const std::string_view info = authority.substr(0, at);
            authority.remove_prefix(at + 1);
            hasUser_ = true;
            const std::size_t colon = info.find(':');
            user_ = info.substr(0, colon);
            if (colon != std::string_view::npos) {
                hasPassword_ = true;
                password_ = info.substr(colon + 1);
            }
            if (info.find_first_of("[]") != std::string_view::npos) return false;
        }
        std::string_view host = authority;
        std::string_view port;
        if (authority.starts_with('[')) {
            const std::size_t close = authority.find(']');
            if (close == std::string_view::npos) return false;
            host = authority.substr(1, close - 1);
            const std::string_view after = authority.substr(close + 1);
            if (!after.empty() && after[0] != ':') return false;
            if (!after.empty()) port = after.substr(1);
            if (host.empty()) return false;
        } else if (const std::size_t colon = authority.rfind(':');
                   colon != std::string_view::npos) {
            host = authority.substr(0, colon);
            port = authority.substr(colon + 1);
        }
        if (host.find_first_of("[]") != std::string_view::npos) return false;
        host_ = host;
        if (!port.empty()) {
            long value = 0;
            for (const char c : port) {
                if (!isDigit(c) || value > 0xFFFFFFF) return false;
                value = value * 10 + (c - '0');
            }
            port_ = value;
        }
    }
    if (rest.find_first_of("[]") != std::string_view::npos) return false;
    path_ = rest;
    text_ = std::move(text);
    return true;
}

void NSURL::setFilePath(const std::string& absolutePath, bool isDirectory) {
    std::string path = absolutePath;
    if (isDirectory && !path.ends_with('/')) path.push_back('/');
    parse("file://" + encodePathComponent(path));
}

objc::Strong<NSURL> NSURL::create(std::string_view text) {
    auto url = objc::adopt(objc::alloc<NSURL>());
    if (!url->parse(std::string(text))) return nullptr;
    return url;
}

objc::Strong<NSURL> NSURL::fileURL(std::string_view path) {
    auto s = NSString::create(path);
    return objc::adopt(objc::alloc<NSURL>()->initFileURLWithPath(s));
}

// The runtime methods; a friend, so that they reach the parts.
struct NSURLMethods {
    static NSURL* URLWithString(Class cls, SEL, NSString* s) {
        id url = objc::msgSend<id>(cls, objc::sel<"alloc">());
        return static_cast<NSURL*>(
            objc_autorelease(objc::msgSend<id>(url, objc::sel<"initWithString:">(), s)));
    }
    static NSURL* fileURLWithPath(Class cls, SEL, NSString* path) {
        id url = objc::msgSend<id>(cls, objc::sel<"alloc">());
        return static_cast<NSURL*>(
            objc_autorelease(objc::msgSend<id>(url, objc::sel<"initFileURLWithPath:">(), path)));
    }
    static NSURL* fileURLWithPathIsDirectory(Class cls, SEL, NSString* path, bool isDirectory) {
        id url = objc::msgSend<id>(cls, objc::sel<"alloc">());
        return static_cast<NSURL*>(objc_autorelease(objc::msgSend<id>(
            url, objc::sel<"initFileURLWithPath:isDirectory:">(), path, isDirectory)));
    }

    static NSURL* initWithString(NSURL* self, SEL, NSString* s) {
        if (s == nullptr) {
            objc_release(self);
            objc::raise(objc::exception_name::InvalidArgument,
                        "-[NSURL initWithString:]: nil string parameter");
        }
        if (!self->parse(s->utf8())) {
            objc_release(self);
            return nullptr;
        }
        return self;
    }

    // A relative path is taken from the current directory, as the platform does.
    static std::string absolute(NSURL* self, NSString* path) {
        if (path == nullptr) {
            objc_release(self);
            objc::raise(objc::exception_name::InvalidArgument,
                        "-[NSURL initFileURLWithPath:]: nil string parameter");
        }
        std::string p = path->utf8();
        // "~" is not expanded: to a URL it is a name like any other, as on the platform.
        if (!p.starts_with('/')) {
            std::string cwd = currentDirectory();
            if (!cwd.ends_with('/')) cwd.push_back('/');
            p = cwd + p;
        }
        return p;
    }

    static NSURL* initFileURLWithPath(NSURL* self, SEL, NSString* path) {
        const std::string p = absolute(self, path);
        self->setFilePath(p, p.ends_with('/') || isDirectoryOnDisk(p));
        return self;
    }

    static NSURL* initFileURLWithPathIsDirectory(NSURL* self, SEL, NSString* path,
                                                 bool isDirectory) {
        self->setFilePath(absolute(self, path), isDirectory);
        return self;
    }

    static bool isFileURL(NSURL* self, SEL) {
        return self->scheme_.size() == 4 && strncasecmp(self->scheme_.c_str(), "file", 4) == 0;
    }
    static NSString* absoluteString(NSURL* self, SEL) {
        return makeString(std::string_view(self->text_));
    }
    static NSString* scheme(NSURL* self, SEL) {
        return self->scheme_.empty() ? nullptr : makeString(std::string_view(self->scheme_));
    }
    static NSString* user(NSURL* self, SEL) {
        return self->hasUser_ ? decoded(self->user_) : nullptr;
    }
    static NSString* password(NSURL* self, SEL) {
        return self->hasPassword_ ? decoded(self->password_) : nullptr;
    }
    static NSString* host(NSURL* self, SEL) {
        return self->host_.empty() ? nullptr : decoded(self->host_);
    }
    static NSNumber* port(NSURL* self, SEL) {
        return self->port_ >= 0 ? NSNumber::numberWithLong(self->port_) : nullptr;
    }
    static NSString* path(NSURL* self, SEL) {
        std::string p = self->path_;
        if (p.size() > 1 && p.ends_with('/')) p.pop_back();
        return decoded(p);
    }
    static NSString* query(NSURL* self, SEL) {
        return self->hasQuery_ ? makeString(std::string_view(self->query_)) : nullptr;
    }
    static NSString* fragment(NSURL* self, SEL) {
        return self->hasFragment_ ? makeString(std::string_view(self->fragment_)) : nullptr;
    }
    static NSString* lastPathComponent(NSURL* self, SEL) {
        NSString* p = self->path();
        return p != nullptr ? p->lastPathComponent() : nullptr;
    }
    static NSString* pathExtension(NSURL* self, SEL) {
        NSString* p = self->path();
        return p != nullptr ? p->pathExtension() : nullptr;
    }
    static bool hasDirectoryPath(NSURL* self, SEL) { return self->path_.ends_with('/'); }

    // A new URL with the path replaced, keeping every other part as written.
    static NSURL* withPath(NSURL* self, const std::string& path) {
        std::string text;
        if (!self->scheme_.empty()) text += self->scheme_ + ":";
        if (self->hasAuthority_) {
            text += "//";
            if (self->hasUser_) {
                text += self->user_;
                if (self->hasPassword_) text += ":" + self->password_;
                text += "@";
            }
            text +=
                self->host_.find(':') != std::string::npos ? "[" + self->host_ + "]" : self->host_;
            if (self->port_ >= 0) text += ":" + std::to_string(self->port_);
        }
        text += path;
        if (self->hasQuery_) text += "?" + self->query_;
        if (self->hasFragment_) text += "#" + self->fragment_;
        auto url = objc::adopt(objc::alloc<NSURL>());
        if (!url->parse(std::move(text))) return nullptr;
        return objc::autorelease(url.leak());
    }

    static NSURL* appendComponent(NSURL* self, NSString* component, int isDirectory) {
        if (component == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "-[NSURL URLByAppendingPathComponent:]: nil component");
        }
        std::string path = self->path_;
        if (!path.ends_with('/')) path.push_back('/');
        std::string c = component->utf8();
        while (c.starts_with('/')) c.erase(0, 1);
        path += encodePathComponent(c);
        // Without a stated kind, a file URL asks the file system.
        bool directory = isDirectory > 0;
        if (isDirectory < 0 && isFileURL(self, nullptr)) {
            const auto local = foundation::text::percentDecode(path);
            directory = local && isDirectoryOnDisk(*local);
        }
        if (directory && !path.ends_with('/')) path.push_back('/');
        return withPath(self, path);
    }
    static NSURL* URLByAppendingPathComponent(NSURL* self, SEL, NSString* component) {
        return appendComponent(self, component, -1);
    }
    static NSURL* URLByAppendingPathComponentIsDirectory(NSURL* self, SEL, NSString* component,
                                                         bool isDirectory) {
        return appendComponent(self, component, isDirectory ? 1 : 0);
    }

    static NSURL* URLByDeletingLastPathComponent(NSURL* self, SEL) {
        std::string path = self->path_;
        while (path.size() > 1 && path.ends_with('/')) path.pop_back();
        if (path == "/") return withPath(self, "/");
        const std::size_t slash = path.rfind('/');
        return withPath(self,
                        slash == std::string::npos ? std::string("./") : path.substr(0, slash + 1));
    }

    static NSURL* URLByAppendingPathExtension(NSURL* self, SEL, NSString* extension) {
        if (extension == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "-[NSURL URLByAppendingPathExtension:]: nil extension");
        }
        std::string path = self->path_;
        const bool directory = path.size() > 1 && path.ends_with('/');
        if (directory) path.pop_back();
        if (path.empty() || path.ends_with('/')) return withPath(self, self->path_);
        path += "." + encodePathComponent(extension->utf8());
        if (directory) path.push_back('/');
        return withPath(self, path);
    }

    static NSURL* URLByDeletingPathExtension(NSURL* self, SEL) {
        std::string path = self->path_;
        const bool directory = path.size() > 1 && path.ends_with('/');
        if (directory) path.pop_back();
        const std::size_t slash = path.rfind('/');
        const std::size_t dot = path.rfind('.');
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        if (dot != std::string::npos && dot > start && dot + 1 < path.size()) path.erase(dot);
        if (directory) path.push_back('/');
        return withPath(self, path);
    }

    static bool isEqual(NSURL* self, SEL, id other) {
        const NSURL* url = objc::cast<NSURL>(other);
        return url != nullptr && url->text_ == self->text_;
    }
    static NSUInteger hash(NSURL* self, SEL) { return std::hash<std::string>{}(self->text_); }
    static id copyWithZone(NSURL* self, SEL, void*) { return objc_retain(self); }
};

void NSURL::objcDefine(objc::ClassBuilder<NSURL>& b) {
    using M = NSURLMethods;
    b.classImp<&M::URLWithString>("URLWithString:")
        .classImp<&M::fileURLWithPath>("fileURLWithPath:")
        .classImp<&M::fileURLWithPathIsDirectory>("fileURLWithPath:isDirectory:")
        .imp<&M::initWithString>("initWithString:")
        .imp<&M::initFileURLWithPath>("initFileURLWithPath:")
        .imp<&M::initFileURLWithPathIsDirectory>("initFileURLWithPath:isDirectory:")
        .imp<&M::isFileURL>("isFileURL")
        .imp<&M::absoluteString>("absoluteString")
        .imp<&M::absoluteString>("description")
        .imp<&M::scheme>("scheme")
        .imp<&M::user>("user")
        .imp<&M::password>("password")
        .imp<&M::host>("host")
        .imp<&M::port>("port")
        .imp<&M::path>("path")
        .imp<&M::query>("query")
        .imp<&M::fragment>("fragment")
        .imp<&M::lastPathComponent>("lastPathComponent")
        .imp<&M::pathExtension>("pathExtension")
        .imp<&M::hasDirectoryPath>("hasDirectoryPath")
        .imp<&M::URLByAppendingPathComponent>("URLByAppendingPathComponent:")
        .imp<&M::URLByAppendingPathComponentIsDirectory>("URLByAppendingPathComponent:isDirectory:")
        .imp<&M::URLByDeletingLastPathComponent>("URLByDeletingLastPathComponent")
        .imp<&M::URLByAppendingPathExtension>("URLByAppendingPathExtension:")
        .imp<&M::URLByDeletingPathExtension>("URLByDeletingPathExtension")
        .imp<&M::isEqual>("isEqual:")
        .imp<&M::hash>("hash")
        .imp<&M::copyWithZone>("copyWithZone:");
}
