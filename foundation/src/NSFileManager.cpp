#include <Foundation/NSArray.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSNumber.h>

#include <objc/image.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

NSString* const NSFileSize = objc::constantString("NSFileSize");
NSString* const NSFileType = objc::constantString("NSFileType");
NSString* const NSFileModificationDate = objc::constantString("NSFileModificationDate");
NSString* const NSFilePosixPermissions = objc::constantString("NSFilePosixPermissions");
NSString* const NSFileTypeDirectory = objc::constantString("NSFileTypeDirectory");
NSString* const NSFileTypeRegular = objc::constantString("NSFileTypeRegular");
NSString* const NSFileTypeSymbolicLink = objc::constantString("NSFileTypeSymbolicLink");
NSString* const NSFileTypeUnknown = objc::constantString("NSFileTypeUnknown");

OBJC_DEFINE_CLASS(NSFileManager, NSObject, "NSFileManager")
OBJC_REGISTER_CLASS(NSFileManager)

void NSFileManager::objcDefine(objc::ClassBuilder<NSFileManager>& b) {
    b.classMethod<&NSFileManager::imp_defaultManager>("defaultManager")
        .method<&NSFileManager::imp_fileExistsAtPath>("fileExistsAtPath:")
        .method<&NSFileManager::imp_fileExistsAtPathIsDirectory>("fileExistsAtPath:isDirectory:")
        .method<&NSFileManager::imp_isReadableFileAtPath>("isReadableFileAtPath:")
        .method<&NSFileManager::imp_contentsOfDirectoryAtPath>("contentsOfDirectoryAtPath:error:")
        .method<&NSFileManager::imp_attributesOfItemAtPath>("attributesOfItemAtPath:error:")
        .method<&NSFileManager::imp_destinationOfSymbolicLinkAtPath>(
            "destinationOfSymbolicLinkAtPath:error:")
        .method<&NSFileManager::imp_copyItemAtPath>("copyItemAtPath:toPath:error:")
        .method<&NSFileManager::imp_moveItemAtPath>("moveItemAtPath:toPath:error:")
        .method<&NSFileManager::imp_removeItemAtPath>("removeItemAtPath:error:")
        .method<&NSFileManager::imp_createDirectoryAtPath>(
            "createDirectoryAtPath:withIntermediateDirectories:attributes:error:")
        .method<&NSFileManager::imp_currentDirectoryPath>("currentDirectoryPath");
}

namespace {

namespace fs = std::filesystem;

std::string pathOf(NSString* path) {
    return path == nullptr ? std::string() : std::string(path->UTF8String());
}

// The platform's shape of a failed file operation.
void fail(NSError** out, int errnoValue, const std::string& path) {
    if (out == nullptr) return;
    const std::string text = std::generic_category().message(errnoValue);
    const auto info = NSDictionary::create({
        {NSLocalizedDescriptionKey, NSString::create(text).get()},
        {NSFilePathErrorKey, NSString::create(path).get()},
    });
    *out = NSError::errorWithDomain(NSPOSIXErrorDomain, errnoValue, info.get());
}

void fail(NSError** out, const std::error_code& code, const std::string& path) {
    fail(out, code.value() != 0 ? code.value() : EIO, path);
}

// A nil or empty path names nothing.
bool checkPath(const std::string& path, NSError** error) {
    if (!path.empty()) return true;
    fail(error, ENOENT, path);
    return false;
}

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

// A copy or a move needs a source and must not replace anything.
bool canTransfer(const std::string& from, const std::string& to, NSError** error) {
    if (!checkPath(from, error) || !checkPath(to, error)) return false;
    if (!exists(from)) {
        fail(error, ENOENT, from);
        return false;
    }
    if (exists(to)) {
        fail(error, EEXIST, to);
        return false;
    }
    return true;
}

}  // namespace

NSFileManager* NSFileManager::imp_defaultManager(Class) {
    static NSFileManager* const instance = [] {
        id obj =
            objc::msgSend<id>(objc::msgSend<id>(NSFileManager::objcClass(), objc::sel<"alloc">()),
                              objc::sel<"init">());
        obj->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return static_cast<NSFileManager*>(obj);
    }();
    return instance;
}

bool NSFileManager::imp_fileExistsAtPath(NSString* path) {
    return imp_fileExistsAtPathIsDirectory(path, nullptr);
}

bool NSFileManager::imp_fileExistsAtPathIsDirectory(NSString* path, bool* isDirectory) {
    const std::string p = pathOf(path);
    struct stat st {};
    const bool found = !p.empty() && ::stat(p.c_str(), &st) == 0;
    if (isDirectory != nullptr) *isDirectory = found && S_ISDIR(st.st_mode);
    return found;
}

bool NSFileManager::imp_isReadableFileAtPath(NSString* path) {
    const std::string p = pathOf(path);
    return !p.empty() && ::access(p.c_str(), R_OK) == 0;
}

NSArray* NSFileManager::imp_contentsOfDirectoryAtPath(NSString* path, NSError** error) {
    const std::string p = pathOf(path);
    if (!checkPath(p, error)) return nullptr;
    std::error_code code;
    fs::directory_iterator it(p, code);
    if (code) {
        fail(error, code, p);
        return nullptr;
    }
    std::vector<objc::Strong<NSString>> names;
    for (; it != fs::directory_iterator(); it.increment(code)) {
        names.push_back(NSString::create(it->path().filename().string()));
    }
    if (code) {
        fail(error, code, p);
        return nullptr;
    }
    std::vector<id> objects(names.begin(), names.end());
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}

NSDictionary* NSFileManager::imp_attributesOfItemAtPath(NSString* path, NSError** error) {
    const std::string p = pathOf(path);
    if (!checkPath(p, error)) return nullptr;
    struct stat st {};
    if (::lstat(p.c_str(), &st) != 0) {
        fail(error, errno, p);
        return nullptr;
    }
    NSString* type = NSFileTypeUnknown;
    if (S_ISDIR(st.st_mode))
        type = NSFileTypeDirectory;
    else if (S_ISREG(st.st_mode))
        type = NSFileTypeRegular;
    else if (S_ISLNK(st.st_mode))
        type = NSFileTypeSymbolicLink;
    const double modified =
        static_cast<double>(st.st_mtim.tv_sec) + static_cast<double>(st.st_mtim.tv_nsec) / 1e9;
    const auto size = NSNumber::create(static_cast<unsigned long long>(st.st_size));
    const auto permissions = NSNumber::create(static_cast<unsigned long>(st.st_mode & 07777));
    const auto info = NSDictionary::create({
        {NSFileSize, size.get()},
        {NSFileType, type},
        {NSFileModificationDate, NSDate::dateWithTimeIntervalSince1970(modified)},
        {NSFilePosixPermissions, permissions.get()},
    });
    return objc::autorelease(objc::retained(info.get()).leak());
}

NSString* NSFileManager::imp_destinationOfSymbolicLinkAtPath(NSString* path, NSError** error) {
    const std::string p = pathOf(path);
    if (!checkPath(p, error)) return nullptr;
    std::error_code code;
    const fs::path target = fs::read_symlink(p, code);
    if (code) {
        fail(error, code, p);
        return nullptr;
    }
    return objc::autorelease(NSString::create(target.string()).leak());
}

bool NSFileManager::imp_copyItemAtPath(NSString* source, NSString* destination, NSError** error) {
    const std::string from = pathOf(source);
    const std::string to = pathOf(destination);
    if (!canTransfer(from, to, error)) return false;
    std::error_code code;
    const fs::file_status status = fs::symlink_status(from, code);
    if (!code) {
        if (fs::is_directory(status)) {
            // copy() of a folder onto a missing path needs the folder first.
            fs::create_directory(to, from, code);
            if (!code) {
                fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks,
                         code);
            }
        } else {
            fs::copy(from, to, fs::copy_options::copy_symlinks, code);
        }
    }
    if (code) {
        fail(error, code, to);
        return false;
    }
    return true;
}

bool NSFileManager::imp_moveItemAtPath(NSString* source, NSString* destination, NSError** error) {
    const std::string from = pathOf(source);
    const std::string to = pathOf(destination);
    // The platform refuses to replace; rename() alone would.
    if (!canTransfer(from, to, error)) return false;
    if (::rename(from.c_str(), to.c_str()) == 0) return true;
    if (errno != EXDEV) {
        fail(error, errno, from);
        return false;
    }
    if (!imp_copyItemAtPath(source, destination, error)) return false;
    return imp_removeItemAtPath(source, error);
}

bool NSFileManager::imp_removeItemAtPath(NSString* path, NSError** error) {
    const std::string p = pathOf(path);
    if (!checkPath(p, error)) return false;
    if (!exists(p)) {
        fail(error, ENOENT, p);
        return false;
    }
    std::error_code code;
    fs::remove_all(p, code);
    if (code) {
        fail(error, code, p);
        return false;
    }
    return true;
}

bool NSFileManager::imp_createDirectoryAtPath(NSString* path, bool intermediate,
                                              NSDictionary* attributes, NSError** error) {
    const std::string p = pathOf(path);
    if (!checkPath(p, error)) return false;
    mode_t mode = 0777;
    if (attributes != nullptr) {
        if (auto* perms =
                static_cast<NSNumber*>(attributes->objectForKey(NSFilePosixPermissions))) {
            mode = static_cast<mode_t>(perms->unsignedLongValue() & 07777);
        }
    }
    if (intermediate) {
        // Missing parents first; an existing folder is not an error here.
        const fs::path parent = fs::path(p).parent_path();
        std::error_code code;
        if (!parent.empty()) fs::create_directories(parent, code);
        if (code) {
            fail(error, code, parent.string());
            return false;
        }
        bool isDirectory = false;
        if (imp_fileExistsAtPathIsDirectory(path, &isDirectory) && isDirectory) return true;
    }
    if (::mkdir(p.c_str(), mode) != 0) {
        fail(error, errno, p);
        return false;
    }
    // mkdir applies the umask; the caller asked for these bits.
    if (attributes != nullptr && attributes->objectForKey(NSFilePosixPermissions) != nullptr) {
        ::chmod(p.c_str(), mode);
    }
    return true;
}

NSString* NSFileManager::imp_currentDirectoryPath() {
    std::error_code code;
    const fs::path current = fs::current_path(code);
    if (code) return nullptr;
    return objc::autorelease(NSString::create(current.string()).leak());
}
