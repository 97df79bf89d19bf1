// Key-value coding's scalar boxing: numeric values travel as NSNumber, and
// numbers or numeric strings are stored back into scalars.
#include <Foundation/NSNumber.h>

#include <objc/object.h>

#include <cstring>
#include <string>

namespace {

// The type without method qualifiers (const, in, out...).
char scalarType(const char* type) {
    while (*type != '\0' && std::strchr("rnNoORV", *type) != nullptr) ++type;
    return *type;
}

template <class T>
T read(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class T>
void write(void* out, T v) {
    std::memcpy(out, &v, sizeof v);
}

id box(const void* value, const char* type) {
    switch (scalarType(type)) {
        case 'B':
            return NSNumber::numberWithBool(read<bool>(value));
        case 'c':
            return NSNumber::numberWithChar(read<char>(value));
        case 'C':
            return NSNumber::numberWithUnsignedChar(read<unsigned char>(value));
        case 's':
            return NSNumber::numberWithShort(read<short>(value));
        case 'S':
            return NSNumber::numberWithUnsignedShort(read<unsigned short>(value));
        case 'i':
        case 'l':
            return NSNumber::numberWithInt(read<int>(value));  // "l" is 32-bit in encodings
        case 'I':
        case 'L':
            return NSNumber::numberWithUnsignedInt(read<unsigned int>(value));
        case 'q':
            return NSNumber::numberWithLongLong(read<long long>(value));
        case 'Q':
            return NSNumber::numberWithUnsignedLongLong(read<unsigned long long>(value));
        case 'f':
            return NSNumber::numberWithFloat(read<float>(value));
        case 'd':
            return NSNumber::numberWithDouble(read<double>(value));
        case 'D':
            return NSNumber::numberWithDouble(static_cast<double>(read<long double>(value)));
        default:
            objc::raise(objc::exception_name::InvalidArgument,
                        std::string("values of type ") + type + " cannot be boxed as numbers");
    }
}

// The source's value in the requested C type, through its own conversions.
template <class Source>
bool store(Source* v, void* out, char type) {
    switch (type) {
        case 'B':
            write(out, v->boolValue());
            return true;
        case 'c':
            write(out, static_cast<char>(v->intValue()));
            return true;
        case 'C':
            write(out, static_cast<unsigned char>(v->intValue()));
            return true;
        case 's':
            write(out, static_cast<short>(v->intValue()));
            return true;
        case 'S':
            write(out, static_cast<unsigned short>(v->intValue()));
            return true;
        case 'i':
        case 'l':
            write(out, v->intValue());
            return true;
        case 'I':
        case 'L':
            write(out, static_cast<unsigned int>(v->longLongValue()));
            return true;
        case 'q':
            write(out, v->longLongValue());
            return true;
        case 'Q':
            write(out, static_cast<unsigned long long>(v->longLongValue()));
            return true;
        case 'f':
            write(out, v->floatValue());
            return true;
        case 'd':
            write(out, v->doubleValue());
            return true;
        case 'D':
            write(out, static_cast<long double>(v->doubleValue()));
            return true;
        default:
            return false;
    }
}

bool unbox(id value, void* out, const char* type) {
    const char t = scalarType(type);
    if (NSNumber* n = objc::cast<NSNumber>(value)) {
        if (t == 'Q' || t == 'I' || t == 'L') {
            // Unsigned reads keep values above the signed range.
            if (t == 'Q')
                write(out, n->unsignedLongLongValue());
            else
                write(out, n->unsignedIntValue());
            return true;
        }
        return store(n, out, t);
    }
    if (NSString* s = objc::cast<NSString>(value)) return store(s, out, t);
    return false;
}

[[maybe_unused]] const bool kRegistered = (objc::setScalarBoxing({&box, &unbox}), true);

}  // namespace
