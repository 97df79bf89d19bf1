// Reading type encodings at run time.
#include <objc/type_info.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace objc {

namespace {

using Kind = TypeInfo::Kind;

// Deep enough for any real type, shallow enough that hostile input cannot
// exhaust the stack.
constexpr int kMaxDepth = 64;
// Far beyond any real type, and low enough that size arithmetic never overflows.
constexpr std::size_t kMaxSize = std::size_t{1} << 40;
constexpr std::size_t kMaxBitfieldWidth = 64;
// libffi lists every element of a struct; past this a by-value pass is not credible.
constexpr std::size_t kMaxFfiElements = std::size_t{1} << 16;
constexpr std::size_t kPointerSize = 8;
static_assert(sizeof(void*) == kPointerSize, "encodings are laid out for LP64");

std::string printable(std::string_view text, std::size_t limit) {
    std::string out;
    for (std::size_t i = 0; i < text.size() && i < limit; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c < 0x7f && c != '"' && c != '\\') {
            out += static_cast<char>(c);
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02x", c);
            out += escaped;
        }
    }
    if (text.size() > limit) out += "...";
    return out;
}

std::string describe(char c) {
    return "'" + printable(std::string_view(&c, 1), 1) + "'";
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t roundUp(std::size_t value, std::size_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

std::uint8_t qualifierBit(char c) {
    switch (c) {
        case 'r':
            return TypeInfo::kConst;
        case 'n':
            return TypeInfo::kIn;
        case 'N':
            return TypeInfo::kInOut;
        case 'o':
            return TypeInfo::kOut;
        case 'O':
            return TypeInfo::kByCopy;
        case 'R':
            return TypeInfo::kByRef;
        case 'V':
            return TypeInfo::kOneway;
        default:
            return 0;
    }
}

void setScalar(TypeInfo& info, Kind kind, std::size_t size) {
    info.kind = kind;
    info.size = size;
    info.alignment = std::max<std::size_t>(size, 1);
}

ffi_type* unsignedOfSize(std::size_t size) {
    switch (size) {
        case 2:
            return &ffi_type_uint16;
        case 4:
            return &ffi_type_uint32;
        case 8:
            return &ffi_type_uint64;
        default:
            return &ffi_type_uint8;
    }
}

// A scalar inside `t` whose size and alignment equal `alignment`, to stand in
// for a union.
const TypeInfo* alignedScalar(const TypeInfo& t, std::size_t alignment) {
    switch (t.kind) {
        case Kind::Struct:
        case Kind::Union:
            for (const TypeInfo& e : t.elements) {
                if (const TypeInfo* found = alignedScalar(e, alignment)) return found;
            }
            return nullptr;
        case Kind::Array:
            return alignedScalar(t.elements.front(), alignment);
        case Kind::Void:
        case Kind::Bitfield:
        case Kind::Unknown:
            return nullptr;
        default:
            return t.size == alignment && t.alignment == alignment ? &t : nullptr;
    }
}

}  // namespace

EncodingError::EncodingError(std::string_view encoding, const std::string& problem)
    : std::invalid_argument("bad type encoding \"" + printable(encoding, 200) + "\": " + problem),
      encoding_(encoding) {}

namespace detail {

struct FfiStorage {
    std::once_flag built;
    ffi_type type{};
    std::vector<ffi_type*> elements;
    // Nested descriptions that `elements` points into.
    std::vector<std::shared_ptr<const FfiStorage>> keep;
};

class Parser {
  public:
    enum class Context { Value, Pointee, Member };

    explicit Parser(std::string_view whole) : whole_(whole) {}

    // `cur` is always a suffix of the whole encoding.
    TypeInfo parse(std::string_view& cur, int depth, Context context) const;
    void parseOffset(std::string_view& cur, TypeInfo& info) const;

    static void buildFfi(const TypeInfo& t, FfiStorage& storage);

  private:
    [[noreturn]] void fail(std::string_view at, const std::string& problem) const {
        throw EncodingError(whole_,
                            problem + " at position " + std::to_string(whole_.size() - at.size()));
    }
    std::size_t parseCount(std::string_view& cur, std::size_t max, const char* what) const;
    void parseAggregate(std::string_view& cur, int depth, Context context, TypeInfo& info) const;
    void parseArray(std::string_view& cur, int depth, TypeInfo& info) const;

    static void append(FfiStorage& storage, ffi_type* type, std::size_t times,
                       const TypeInfo& owner);
    static void appendMember(FfiStorage& storage, const TypeInfo& member, const TypeInfo& owner);

    std::string_view whole_;
};

TypeInfo Parser::parse(std::string_view& cur, int depth, Context context) const {
    if (depth > kMaxDepth) {
        fail(cur, "types nested more than " + std::to_string(kMaxDepth) + " deep");
    }
    const std::string_view start = cur;
    TypeInfo info;
    while (!cur.empty() && qualifierBit(cur.front()) != 0) {
        info.qualifiers |= qualifierBit(cur.front());
        cur.remove_prefix(1);
    }
    if (cur.empty()) fail(cur, info.qualifiers != 0 ? "qualifiers without a type" : "missing type");

    const std::string_view typeStart = cur;
    const char c = cur.front();
    cur.remove_prefix(1);
    switch (c) {
        case 'v':
            setScalar(info, Kind::Void, 0);
            break;
        case 'c':
            setScalar(info, Kind::Char, 1);
            break;
        case 'C':
            setScalar(info, Kind::UnsignedChar, 1);
            break;
        case 'B':
            setScalar(info, Kind::Bool, 1);
            break;
        case 's':
            setScalar(info, Kind::Short, 2);
            break;
        case 'S':
            setScalar(info, Kind::UnsignedShort, 2);
            break;
        case 'i':
            setScalar(info, Kind::Int, 4);
            break;
        case 'I':
            setScalar(info, Kind::UnsignedInt, 4);
            break;
        case 'l':
            setScalar(info, Kind::Long, 4);
            break;
        case 'L':
            setScalar(info, Kind::UnsignedLong, 4);
            break;
        case 'q':
            setScalar(info, Kind::LongLong, 8);
            break;
        case 'Q':
            setScalar(info, Kind::UnsignedLongLong, 8);
            break;
        case 'f':
            setScalar(info, Kind::Float, 4);
            break;
        case 'd':
            setScalar(info, Kind::Double, 8);
            break;
        case 'D':
            setScalar(info, Kind::LongDouble, 16);
            break;
        case '#':
            setScalar(info, Kind::Class, kPointerSize);
            break;
        case ':':
            setScalar(info, Kind::Selector, kPointerSize);
            break;
        case '*':
            setScalar(info, Kind::CString, kPointerSize);
            break;
        case '?':
            setScalar(info, Kind::Unknown, 0);
            break;
        case '@':
            if (!cur.empty() && cur.front() == '?') {
                cur.remove_prefix(1);
                setScalar(info, Kind::Block, kPointerSize);
            } else {
                setScalar(info, Kind::Object, kPointerSize);
            }
            break;
        case '^':
            setScalar(info, Kind::Pointer, kPointerSize);
            if (cur.empty()) fail(cur, "pointer without a pointee type");
            info.pointee =
                std::make_shared<const TypeInfo>(parse(cur, depth + 1, Context::Pointee));
            break;
        case '{':
            info.kind = Kind::Struct;
            parseAggregate(cur, depth, context, info);
            break;
        case '(':
            info.kind = Kind::Union;
            parseAggregate(cur, depth, context, info);
            break;
        case '[':
            parseArray(cur, depth, info);
            break;
        case 'b':
            info.kind = Kind::Bitfield;
            if (cur.empty() || !isDigit(cur.front())) fail(cur, "bitfield without a width");
            info.count = parseCount(cur, kMaxBitfieldWidth, "bitfield width");
            info.size = (info.count + 7) / 8;
            info.alignment = 1;
            if (info.size > 1) info.ffi_ = std::make_shared<FfiStorage>();
            break;
        default:
            fail(typeStart, "unknown type character " + describe(c));
    }
    info.encoding.assign(typeStart.substr(0, typeStart.size() - cur.size()));
    info.qualifiedEncoding.assign(start.substr(0, start.size() - cur.size()));
    return info;
}

void Parser::parseAggregate(std::string_view& cur, int depth, Context context,
                            TypeInfo& info) const {
    const bool isUnion = info.kind == Kind::Union;
    const char close = isUnion ? ')' : '}';
    const std::string what = isUnion ? "union" : "struct";

    std::size_t n = 0;
    while (n < cur.size() && cur[n] != '=' && cur[n] != close) {
        if (std::string_view("{}()[]\"").find(cur[n]) != std::string_view::npos) {
            fail(cur.substr(n), "unexpected " + describe(cur[n]) + " in a " + what + " name");
        }
        ++n;
    }
    if (n == cur.size()) fail(cur.substr(n), "unterminated " + what);
    info.name.assign(cur.substr(0, n));
    const bool hasMembers = cur[n] == '=';
    cur.remove_prefix(n + 1);

    if (!hasMembers) {
        // "{Name}" says nothing of the layout, so it can only be pointed to.
        if (context != Context::Pointee) {
            fail(cur, what + " " + info.name + " without members outside a pointer");
        }
        info.incomplete = true;
        return;
    }

    std::size_t end = 0;  // struct: offset after the last member; union: largest member
    std::size_t alignment = 1;
    for (;;) {
        if (cur.empty()) fail(cur, "unterminated " + what);
        if (cur.front() == close) {
            cur.remove_prefix(1);
            break;
        }
        const std::string_view memberStart = cur;
        TypeInfo member = parse(cur, depth + 1, Context::Member);
        if (member.kind == Kind::Void) fail(memberStart, "void member in a " + what);
        alignment = std::max(alignment, member.alignment);
        end = isUnion ? std::max(end, member.size) : roundUp(end, member.alignment) + member.size;
        if (end > kMaxSize) fail(cur, what + " too large");
        info.elements.push_back(std::move(member));
    }
    info.alignment = alignment;
    info.size = roundUp(end, alignment);
    info.ffi_ = std::make_shared<FfiStorage>();
}

void Parser::parseArray(std::string_view& cur, int depth, TypeInfo& info) const {
    info.kind = Kind::Array;
    if (cur.empty() || !isDigit(cur.front())) fail(cur, "array without an element count");
    info.count = parseCount(cur, kMaxSize, "array count");
    if (cur.empty()) fail(cur, "unterminated array");
    if (cur.front() == ']') fail(cur, "array without an element type");
    const std::string_view elementStart = cur;
    TypeInfo element = parse(cur, depth + 1, Context::Member);
    if (element.kind == Kind::Void) fail(elementStart, "array of void");
    if (cur.empty()) fail(cur, "unterminated array");
    if (cur.front() != ']') fail(cur, "expected ']' after the array element type");
    cur.remove_prefix(1);
    if (element.size != 0 && info.count > kMaxSize / element.size) fail(cur, "array too large");
    info.size = info.count * element.size;
    info.alignment = element.alignment;
    info.elements.push_back(std::move(element));
    info.ffi_ = std::make_shared<FfiStorage>();
}

std::size_t Parser::parseCount(std::string_view& cur, std::size_t max, const char* what) const {
    std::size_t value = 0;
    while (!cur.empty() && isDigit(cur.front())) {
        value = value * 10 + static_cast<std::size_t>(cur.front() - '0');
        if (value > max) fail(cur, std::string(what) + " too large");
        cur.remove_prefix(1);
    }
    return value;
}

void Parser::parseOffset(std::string_view& cur, TypeInfo& info) const {
    const std::size_t sign = !cur.empty() && cur.front() == '-' ? 1 : 0;
    std::size_t end = sign;
    while (end < cur.size() && isDigit(cur[end])) ++end;
    if (end == sign) return;  // no offset; a lone '-' is left for the next type to reject
    long value = 0;
    const auto result = std::from_chars(cur.data(), cur.data() + end, value);
    if (result.ec != std::errc{}) fail(cur, "offset out of range");
    info.offset = value;
    cur.remove_prefix(end);
}

void Parser::append(FfiStorage& storage, ffi_type* type, std::size_t times, const TypeInfo& owner) {
    if (times > kMaxFfiElements - storage.elements.size()) {
        throw EncodingError(owner.encoding, "too many elements to describe to libffi");
    }
    storage.elements.insert(storage.elements.end(), times, type);
}

void Parser::appendMember(FfiStorage& storage, const TypeInfo& member, const TypeInfo& owner) {
    if (member.size == 0) return;  // contributes no bytes
    switch (member.kind) {
        case Kind::Array: {
            // An array inside a struct is its elements, one after another.
            const TypeInfo& element = member.elements.front();
            append(storage, element.ffiType(), member.count, owner);
            if (element.ffi_) storage.keep.push_back(element.ffi_);
            break;
        }
        case Kind::Bitfield:
            append(storage, &ffi_type_uint8, member.size, owner);
            break;
        default:
            append(storage, member.ffiType(), 1, owner);
            if (member.ffi_) storage.keep.push_back(member.ffi_);
    }
}

void Parser::buildFfi(const TypeInfo& t, FfiStorage& storage) {
    switch (t.kind) {
        case Kind::Struct:
            for (const TypeInfo& member : t.elements) appendMember(storage, member, t);
            break;
        case Kind::Array:
        case Kind::Bitfield:
            appendMember(storage, t, t);
            break;
        case Kind::Union: {
            // libffi has no unions: the most aligned scalar, repeated to the
            // union's size, gives the same size and alignment.
            const TypeInfo* scalar = nullptr;
            for (const TypeInfo& member : t.elements) {
                scalar = alignedScalar(member, t.alignment);
                if (scalar != nullptr) break;
            }
            ffi_type* unit = scalar != nullptr ? scalar->ffiType() : unsignedOfSize(t.alignment);
            append(storage, unit, t.size / t.alignment, t);
            break;
        }
        default:
            break;
    }
    // libffi places each element at its own alignment; where that disagrees
    // with the encoding (a zero-length array's alignment pads, but adds no
    // element), calls would pass misplaced bytes, so the type is refused.
    std::size_t end = 0;
    std::size_t alignment = 1;
    for (const ffi_type* element : storage.elements) {
        end = roundUp(end, element->alignment) + element->size;
        alignment = std::max<std::size_t>(alignment, element->alignment);
    }
    if (roundUp(end, alignment) != t.size || alignment != t.alignment) {
        throw EncodingError(t.encoding, "a layout libffi cannot describe (" +
                                            std::to_string(t.size) + " bytes, " +
                                            std::to_string(roundUp(end, alignment)) +
                                            " as libffi lays out its members)");
    }
    storage.elements.push_back(nullptr);
    // Filled in here so that ffi_prep_cif never writes to a description that
    // other threads may be reading.
    storage.type.size = t.size;
    storage.type.alignment = static_cast<unsigned short>(t.alignment);
    storage.type.type = FFI_TYPE_STRUCT;
    storage.type.elements = storage.elements.data();
}

}  // namespace detail

ffi_type* TypeInfo::ffiType() const {
    if (size == 0) return &ffi_type_void;
    switch (kind) {
        case Kind::Char:
            return &ffi_type_sint8;
        case Kind::UnsignedChar:
        case Kind::Bool:
            return &ffi_type_uint8;
        case Kind::Short:
            return &ffi_type_sint16;
        case Kind::UnsignedShort:
            return &ffi_type_uint16;
        case Kind::Int:
        case Kind::Long:
            return &ffi_type_sint32;
        case Kind::UnsignedInt:
        case Kind::UnsignedLong:
            return &ffi_type_uint32;
        case Kind::LongLong:
            return &ffi_type_sint64;
        case Kind::UnsignedLongLong:
            return &ffi_type_uint64;
        case Kind::Float:
            return &ffi_type_float;
        case Kind::Double:
            return &ffi_type_double;
        case Kind::LongDouble:
            return &ffi_type_longdouble;
        case Kind::Object:
        case Kind::Block:
        case Kind::Class:
        case Kind::Selector:
        case Kind::CString:
        case Kind::Pointer:
            return &ffi_type_pointer;
        case Kind::Bitfield:
            if (size == 1) return &ffi_type_uint8;
            break;
        case Kind::Void:
        case Kind::Unknown:
            return &ffi_type_void;
        case Kind::Struct:
        case Kind::Union:
        case Kind::Array:
            break;
    }
    if (!ffi_) throw std::logic_error("objc::TypeInfo::ffiType: aggregate not built by the parser");
    std::call_once(ffi_->built, [this] { detail::Parser::buildFfi(*this, *ffi_); });
    return &ffi_->type;
}

TypeInfo parseType(std::string_view& cursor) {
    const detail::Parser parser(cursor);
    std::string_view cur = cursor;
    TypeInfo info = parser.parse(cur, 0, detail::Parser::Context::Value);
    parser.parseOffset(cur, info);
    cursor = cur;
    return info;
}

std::vector<TypeInfo> parseMethodEncoding(std::string_view types) {
    if (types.empty()) throw EncodingError(types, "empty method encoding");
    const detail::Parser parser(types);
    std::vector<TypeInfo> parsed;
    std::string_view cur = types;
    while (!cur.empty()) {
        parsed.push_back(parser.parse(cur, 0, detail::Parser::Context::Value));
        parser.parseOffset(cur, parsed.back());
    }
    return parsed;
}

std::shared_ptr<const std::vector<TypeInfo>> parseMethodEncodingCached(std::string_view types) {
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const noexcept {
            return std::hash<std::string_view>{}(s);
        }
    };
    struct Cache {
        std::shared_mutex mutex;
        std::unordered_map<std::string, std::shared_ptr<const std::vector<TypeInfo>>, Hash,
                           std::equal_to<>>
            entries;
    };
    // Programs use a bounded set of signatures; the limit only stops a stream
    // of distinct strings from growing the cache forever.
    constexpr std::size_t kMaxEntries = 4096;
    static Cache cache;

    {
        const std::shared_lock lock(cache.mutex);
        if (const auto it = cache.entries.find(types); it != cache.entries.end()) {
            return it->second;
        }
    }
    auto parsed = std::make_shared<const std::vector<TypeInfo>>(parseMethodEncoding(types));
    const std::unique_lock lock(cache.mutex);
    if (cache.entries.size() >= kMaxEntries) cache.entries.clear();
    // Another thread may have parsed it meanwhile; every caller gets the same copy.
    return cache.entries.try_emplace(std::string(types), std::move(parsed)).first->second;
}

}  // namespace objc

namespace objc {

const char* getSizeAndAlignment(const char* typePtr, NSUInteger* sizep, NSUInteger* alignp) {
    if (typePtr == nullptr) throw EncodingError({}, "null encoding");
    const std::string_view whole(typePtr);
    std::string_view cursor = whole;
    const TypeInfo info = parseType(cursor);
    if (sizep != nullptr) *sizep = info.size;
    if (alignp != nullptr) *alignp = info.alignment;
    return typePtr + (whole.size() - cursor.size());
}

}  // namespace objc

// An exception must not unwind into a C caller, which could neither catch it
// nor clean up its own frames.
const char* NSGetSizeAndAlignment(const char* typePtr, NSUInteger* sizep, NSUInteger* alignp) {
    try {
        return objc::getSizeAndAlignment(typePtr, sizep, alignp);
    } catch (...) {
        if (sizep != nullptr) *sizep = 0;
        if (alignp != nullptr) *alignp = 0;
        return nullptr;
    }
}
