// URLs as RFC 3986 writes them, and file URLs for local paths.
#pragma once

#include <objc/string.h>

#include <string>
#include <string_view>

class NSNumber;

class PV_EXPORT NSURL : public NSObject {
    OBJC_CLASS(NSURL)

    // nil when the text is not a valid URL (empty, spaces, a bad port...).
    static NSURL* URLWithString(NSString* s) {
        return objc::msgSend<NSURL*>(objcClass(), objc::sel<"URLWithString:">(), s);
    }
    // A relative path is made absolute against the current directory.
    static NSURL* fileURLWithPath(NSString* path) {
        return objc::msgSend<NSURL*>(objcClass(), objc::sel<"fileURLWithPath:">(), path);
    }
    static NSURL* fileURLWithPath(NSString* path, bool isDirectory) {
        return objc::msgSend<NSURL*>(objcClass(), objc::sel<"fileURLWithPath:isDirectory:">(), path,
                                     isDirectory);
    }
    NSURL* initWithString(NSString* s) {
        return objc::msgSend<NSURL*>(this, objc::sel<"initWithString:">(), s);
    }
    NSURL* initFileURLWithPath(NSString* path) {
        return objc::msgSend<NSURL*>(this, objc::sel<"initFileURLWithPath:">(), path);
    }
    NSURL* initFileURLWithPath(NSString* path, bool isDirectory) {
        return objc::msgSend<NSURL*>(this, objc::sel<"initFileURLWithPath:isDirectory:">(), path,
                                     isDirectory);
    }

    // Owned URLs for C++ callers; null where the messages answer nil.
    static objc::Strong<NSURL> create(std::string_view text);
    static objc::Strong<NSURL> fileURL(std::string_view path);

    bool isFileURL() { return objc::msgSend<bool>(this, objc::sel<"isFileURL">()); }
    NSString* absoluteString() { return string<"absoluteString">(); }
    NSString* scheme() { return string<"scheme">(); }
    NSString* user() { return string<"user">(); }
    NSString* password() { return string<"password">(); }
    NSString* host() { return string<"host">(); }
    NSNumber* port() { return objc::msgSend<NSNumber*>(this, objc::sel<"port">()); }
    // Percent-decoded, without a trailing slash (except for "/").
    NSString* path() { return string<"path">(); }
    NSString* query() { return string<"query">(); }
    NSString* fragment() { return string<"fragment">(); }
    NSString* lastPathComponent() { return string<"lastPathComponent">(); }
    NSString* pathExtension() { return string<"pathExtension">(); }
    bool hasDirectoryPath() { return objc::msgSend<bool>(this, objc::sel<"hasDirectoryPath">()); }
    NSURL* URLByAppendingPathComponent(NSString* component) {
        return objc::msgSend<NSURL*>(this, objc::sel<"URLByAppendingPathComponent:">(), component);
    }
    NSURL* URLByAppendingPathComponent(NSString* component, bool isDirectory) {
        return objc::msgSend<NSURL*>(this, objc::sel<"URLByAppendingPathComponent:isDirectory:">(),
                                     component, isDirectory);
    }
    NSURL* URLByDeletingLastPathComponent() {
        return objc::msgSend<NSURL*>(this, objc::sel<"URLByDeletingLastPathComponent">());
    }
    NSURL* URLByAppendingPathExtension(NSString* extension) {
        return objc::msgSend<NSURL*>(this, objc::sel<"URLByAppendingPathExtension:">(), extension);
    }
    NSURL* URLByDeletingPathExtension() {
        return objc::msgSend<NSURL*>(this, objc::sel<"URLByDeletingPathExtension">());
    }

    NSURL() = default;

  private:
    template <objc::FixedString Name>
    NSString* string() {
        return objc::msgSend<NSString*>(this, objc::sel<Name>());
    }

    // Parses absolute text into the parts; false when it is not a URL.
    bool parse(std::string text);
    void setFilePath(const std::string& absolutePath, bool isDirectory);

    friend struct NSURLMethods;  // the runtime methods, in NSURL.cpp

    // The parts as written (still percent-encoded); absent parts are unset.
    std::string text_;
    std::string scheme_;
    bool hasAuthority_ = false;
    std::string user_, password_, host_;
    bool hasUser_ = false, hasPassword_ = false;
    long port_ = -1;
    std::string path_;
    bool hasQuery_ = false, hasFragment_ = false;
    std::string query_, fragment_;
};
