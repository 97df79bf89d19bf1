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
extern NSString* const kUTTagClassFilenameExtension;  // "public.filename-extension"
extern NSString* const kUTTagClassMIMEType;           // "public.mime-type"
extern NSString* const kUTTagClassNSPboardType;       // "com.apple.nspboard-type"
extern NSString* const kUTTagClassOSType;             // "com.apple.ostype"

// The preferred identifier for a tag: extensions without a leading dot, in
// any case; MIME types in any case, parameters ignored. With
// inConformingToUTI, only a type conforming to it will do; when none does
// the answer is a dynamic identifier made to conform to it.
CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef inTagClass, CFStringRef inTag,
                                                  CFStringRef inConformingToUTI);
// Every type carrying the tag, preferred first (a dynamic identifier when
// none does).
CFArrayRef UTTypeCreateAllIdentifiersForTag(CFStringRef inTagClass, CFStringRef inTag,
                                            CFStringRef inConformingToUTI);

// The preferred tag of a class (an extension, a MIME type); nil when the
// type has none.
CFStringRef UTTypeCopyPreferredTagWithClass(CFStringRef inUTI, CFStringRef inTagClass);
// Every tag of the class, preferred first; nil when there is none.
CFArrayRef UTTypeCopyAllTagsWithClass(CFStringRef inUTI, CFStringRef inTagClass);

Boolean UTTypeEqual(CFStringRef inUTI1, CFStringRef inUTI2);
// Reflexive and transitive over the conformance graph. Every file type,
// dynamic ones included, conforms to public.data and public.item.
Boolean UTTypeConformsTo(CFStringRef inUTI, CFStringRef inConformsToUTI);

// A short description for people ("JPEG image"); nil for an unknown type.
CFStringRef UTTypeCopyDescription(CFStringRef inUTI);
// Whether the system declares the type (dynamic identifiers are not declared).
Boolean UTTypeIsDeclared(CFStringRef inUTI);
Boolean UTTypeIsDynamic(CFStringRef inUTI);
