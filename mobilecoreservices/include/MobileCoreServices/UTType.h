// Uniform type identifiers: reverse-DNS names for kinds of data
// ("public.jpeg"), mapped to and from file-name extensions and MIME types,
// with conformance ("public.jpeg" is a "public.image" is a "public.data").
//
// Identifiers and tags compare without regard to ASCII case. A tag that no
// known type claims gets a dynamic identifier ("dyn." + the tag, encoded),
// from which the tag reads back. Functions named Create or Copy answer an
// object that the caller owns (+1), as Core Foundation's naming rule says;
// a nil argument where a string is needed answers nil (or false).
#pragma once

#include <Foundation/NSArray.h>

#include <objc/string.h>

using CFStringRef = NSString*;
using CFArrayRef = NSArray*;
using Boolean = bool;

// Tag classes.
PV_EXPORT extern NSString* const kUTTagClassFilenameExtension;  // "public.filename-extension"
PV_EXPORT extern NSString* const kUTTagClassMIMEType;           // "public.mime-type"
PV_EXPORT extern NSString* const kUTTagClassNSPboardType;       // "com.apple.nspboard-type"
PV_EXPORT extern NSString* const kUTTagClassOSType;             // "com.apple.ostype"

// The preferred identifier for a tag: extensions without a leading dot, in
// any case; MIME types in any case, parameters ignored. With
// inConformingToUTI, only a type conforming to it will do; when none does
// the answer is a dynamic identifier made to conform to it.
PV_EXPORT CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef inTagClass,
                                                            CFStringRef inTag,
                                                            CFStringRef inConformingToUTI);
// Every type carrying the tag, preferred first (a dynamic identifier when
// none does).
PV_EXPORT CFArrayRef UTTypeCreateAllIdentifiersForTag(CFStringRef inTagClass, CFStringRef inTag,
                                                      CFStringRef inConformingToUTI);

// The preferred tag of a class (an extension, a MIME type); nil when the
// type has none.
PV_EXPORT CFStringRef UTTypeCopyPreferredTagWithClass(CFStringRef inUTI, CFStringRef inTagClass);
// Every tag of the class, preferred first; nil when there is none.
PV_EXPORT CFArrayRef UTTypeCopyAllTagsWithClass(CFStringRef inUTI, CFStringRef inTagClass);

PV_EXPORT Boolean UTTypeEqual(CFStringRef inUTI1, CFStringRef inUTI2);
// Reflexive and transitive over the conformance graph. Every file type,
// dynamic ones included, conforms to public.data and public.item.
PV_EXPORT Boolean UTTypeConformsTo(CFStringRef inUTI, CFStringRef inConformsToUTI);

// A short description for people ("JPEG image"); nil for an unknown type.
PV_EXPORT CFStringRef UTTypeCopyDescription(CFStringRef inUTI);
// Whether the system declares the type (dynamic identifiers are not declared).
PV_EXPORT Boolean UTTypeIsDeclared(CFStringRef inUTI);
PV_EXPORT Boolean UTTypeIsDynamic(CFStringRef inUTI);
