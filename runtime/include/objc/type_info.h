// Type encodings read at run time: sizes, alignments, structure and the libffi
// description of each type.
#pragma once

#include <objc/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <ffi.h>

namespace objc {

// A malformed encoding. The message quotes the encoding and says what is wrong
// and where.
class PV_EXPORT EncodingError : public std::invalid_argument {
  public:
    EncodingError(std::string_view encoding, const std::string& problem);
    const std::string& encoding() const noexcept { return encoding_; }

  private:
    std::string encoding_;
};

namespace detail {
struct FfiStorage;
class Parser;
}  // namespace detail

// One parsed type.
struct PV_EXPORT TypeInfo {
    enum class Kind : std::uint8_t {
        Void,              // v
        Char,              // c
        UnsignedChar,      // C
        Short,             // s
        UnsignedShort,     // S
        Int,               // i
        UnsignedInt,       // I
        Long,              // l, 32-bit in encodings
        UnsignedLong,      // L
        LongLong,          // q
        UnsignedLongLong,  // Q
        Float,             // f
        Double,            // d
        LongDouble,        // D
        Bool,              // B
        Object,            // @
        Block,             // @?
        Class,             // #
        Selector,          // :
        CString,           // *
        Pointer,           // ^type
        Struct,            // {name=fields} or, only as a pointee, {name}
        Union,             // (name=members)
        Array,             // [count type]
        Bitfield,          // bwidth
        Unknown,           // ?, as in "^?" for a function pointer
    };

    // Bits of `qualifiers`; any number may precede a type.
    enum Qualifier : std::uint8_t {
        kConst = 1 << 0,   // r
        kIn = 1 << 1,      // n
        kInOut = 1 << 2,   // N
        kOut = 1 << 3,     // o
        kByCopy = 1 << 4,  // O
        kByRef = 1 << 5,   // R
        kOneway = 1 << 6,  // V
    };

    Kind kind = Kind::Unknown;
    std::uint8_t qualifiers = 0;
    // LP64 C layout. A bitfield takes its width rounded up to whole bytes, at
    // alignment 1, with no packing of neighbouring bitfields.
    std::size_t size = 0;
    std::size_t alignment = 1;
    // Element count of an array; width in bits of a bitfield.
    std::size_t count = 0;
    // Tag of a struct or union.
    std::string name;
    // A struct written without fields, "{name}": known only behind a pointer.
    bool incomplete = false;
    // Fields of a struct, members of a union, or the single element of an array.
    std::vector<TypeInfo> elements;
    // What a pointer points to.
    std::shared_ptr<const TypeInfo> pointee;
    // The text of this type, without and with its leading qualifiers; neither
    // includes the offset.
    std::string encoding;
    std::string qualifiedEncoding;
    // The frame offset written after a type in a method encoding ("v24@0:8").
    std::optional<long> offset;

    bool hasQualifier(Qualifier q) const { return (qualifiers & q) != 0; }

    // The libffi description, valid while this TypeInfo or any copy of it lives.
    // Types of size zero (void, empty structs) answer ffi_type_void. Arrays are
    // described as a structure of repeated elements, as they lie inside a struct.
    // A union is approximated by its most aligned scalar repeated to cover its
    // size. Throws EncodingError for aggregates too large to describe, and
    // std::logic_error for aggregates not produced by the parser.
    ffi_type* ffiType() const;

  private:
    friend class detail::Parser;
    std::shared_ptr<detail::FfiStorage> ffi_;
};

// Consumes one type from the front of `cursor`: its qualifiers, the type, and
// any offset digits after it. Throws EncodingError on malformed input, leaving
// `cursor` untouched. Never reads outside the view.
PV_EXPORT TypeInfo parseType(std::string_view& cursor);

// The result type followed by each argument type (for a method, index 1 is the
// receiver and index 2 the selector). Counts are the caller's to check.
PV_EXPORT std::vector<TypeInfo> parseMethodEncoding(std::string_view types);

// parseMethodEncoding through a process-wide cache, for encodings parsed again
// on every forwarded message.
PV_EXPORT std::shared_ptr<const std::vector<TypeInfo>> parseMethodEncodingCached(
    std::string_view types);

// Size and alignment of the first type in a terminated encoding; answers the
// position after it and its offset digits. Either out-pointer may be null.
// Throws EncodingError, the runtime's invalid-argument exception, on a
// malformed or null encoding.
PV_EXPORT const char* getSizeAndAlignment(const char* typePtr, NSUInteger* sizep,
                                          NSUInteger* alignp);

}  // namespace objc

// getSizeAndAlignment for callers in any language: it never throws. A
// malformed or null encoding answers null, with zero size and alignment.
extern "C" PV_EXPORT const char* NSGetSizeAndAlignment(const char* typePtr, NSUInteger* sizep,
                                                       NSUInteger* alignp);
