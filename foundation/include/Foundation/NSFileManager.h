// The file system as objects: listing, inspecting, copying, moving and
// removing items by path. Failures answer NO/nil and describe themselves
// through an NSError** (NSPOSIXErrorDomain, the errno value as the code, the
// system's text as the description and the path under NSFilePathErrorKey).
#pragma once

#include <objc/object.h>
#include <objc/string.h>

class NSArray;
class NSDictionary;
class NSError;

// Keys and values of attributesOfItemAtPath:error:.
PV_EXPORT extern NSString* const NSFileSize;              // NSNumber, bytes
PV_EXPORT extern NSString* const NSFileType;              // one of the NSFileType... values
PV_EXPORT extern NSString* const NSFileModificationDate;  // NSDate
PV_EXPORT extern NSString* const NSFilePosixPermissions;  // NSNumber, mode bits
PV_EXPORT extern NSString* const NSFileTypeDirectory;
PV_EXPORT extern NSString* const NSFileTypeRegular;
PV_EXPORT extern NSString* const NSFileTypeSymbolicLink;
PV_EXPORT extern NSString* const NSFileTypeUnknown;

class PV_EXPORT NSFileManager : public NSObject {
    OBJC_CLASS(NSFileManager)

    // The shared manager; it never dies.
    static NSFileManager* defaultManager() {
        return objc::msgSend<NSFileManager*>(objcClass(), objc::sel<"defaultManager">());
    }

    // Follows symbolic links: a dangling link does not exist.
    bool fileExistsAtPath(NSString* path) {
        return objc::msgSend<bool>(this, objc::sel<"fileExistsAtPath:">(), path);
    }
    bool fileExistsAtPath(NSString* path, bool* isDirectory) {
        return objc::msgSend<bool>(this, objc::sel<"fileExistsAtPath:isDirectory:">(), path,
                                   isDirectory);
    }
    bool isReadableFileAtPath(NSString* path) {
        return objc::msgSend<bool>(this, objc::sel<"isReadableFileAtPath:">(), path);
    }
    // The names in the folder (no "." or ".."), in no particular order.
    NSArray* contentsOfDirectoryAtPath(NSString* path, NSError** error) {
        return objc::msgSend<NSArray*>(this, objc::sel<"contentsOfDirectoryAtPath:error:">(), path,
                                       error);
    }
    // The item itself, not what a link points to.
    NSDictionary* attributesOfItemAtPath(NSString* path, NSError** error) {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"attributesOfItemAtPath:error:">(),
                                            path, error);
    }
    NSString* destinationOfSymbolicLinkAtPath(NSString* path, NSError** error) {
        return objc::msgSend<NSString*>(this, objc::sel<"destinationOfSymbolicLinkAtPath:error:">(),
                                        path, error);
    }
    // Copies files, folders (recursively) and links (as links); refuses to
    // overwrite an existing destination.
    bool copyItemAtPath(NSString* source, NSString* destination, NSError** error) {
        return objc::msgSend<bool>(this, objc::sel<"copyItemAtPath:toPath:error:">(), source,
                                   destination, error);
    }
    // Renames; across file systems copies, then removes the source.
    bool moveItemAtPath(NSString* source, NSString* destination, NSError** error) {
        return objc::msgSend<bool>(this, objc::sel<"moveItemAtPath:toPath:error:">(), source,
                                   destination, error);
    }
    // Removes a file, a link (not its target) or a folder with its contents.
    bool removeItemAtPath(NSString* path, NSError** error) {
        return objc::msgSend<bool>(this, objc::sel<"removeItemAtPath:error:">(), path, error);
    }
    // Attributes may be nil; NSFilePosixPermissions is honoured.
    bool createDirectoryAtPath(NSString* path, bool withIntermediateDirectories,
                               NSDictionary* attributes, NSError** error) {
        return objc::msgSend<bool>(
            this,
            objc::sel<"createDirectoryAtPath:withIntermediateDirectories:attributes:error:">(),
            path, withIntermediateDirectories, attributes, error);
    }
    NSString* currentDirectoryPath() {
        return objc::msgSend<NSString*>(this, objc::sel<"currentDirectoryPath">());
    }

    NSFileManager() = default;

  private:
    static NSFileManager* imp_defaultManager(Class cls);
    bool imp_fileExistsAtPath(NSString* path);
    bool imp_fileExistsAtPathIsDirectory(NSString* path, bool* isDirectory);
    bool imp_isReadableFileAtPath(NSString* path);
    NSArray* imp_contentsOfDirectoryAtPath(NSString* path, NSError** error);
    NSDictionary* imp_attributesOfItemAtPath(NSString* path, NSError** error);
    NSString* imp_destinationOfSymbolicLinkAtPath(NSString* path, NSError** error);
    bool imp_copyItemAtPath(NSString* source, NSString* destination, NSError** error);
    bool imp_moveItemAtPath(NSString* source, NSString* destination, NSError** error);
    bool imp_removeItemAtPath(NSString* path, NSError** error);
    bool imp_createDirectoryAtPath(NSString* path, bool intermediate, NSDictionary* attributes,
                                   NSError** error);
    NSString* imp_currentDirectoryPath();
};
