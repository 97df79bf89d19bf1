// Boxed numbers: a stored value of one kind, converted with C semantics on
// the way out, compared and hashed by numeric value across kinds (@1, @1.0
// and @YES are equal).
#pragma once

#include <objc/string.h>

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace foundation {
// What a number can be made from: arithmetic values, and enumerations as
// their underlying integer.
template <class T>
concept Boxable = std::is_arithmetic_v<T> || std::is_enum_v<T>;
}  // namespace foundation

class PV_EXPORT NSNumber : public NSObject {
    OBJC_CLASS(NSNumber)

    // Autoreleased numbers (numberWithBool: answers one of two shared instances).
    static NSNumber* numberWithBool(bool v) { return with<"numberWithBool:">(v); }
    static NSNumber* numberWithChar(char v) { return with<"numberWithChar:">(v); }
    static NSNumber* numberWithUnsignedChar(unsigned char v) {
        return with<"numberWithUnsignedChar:">(v);
    }
    static NSNumber* numberWithShort(short v) { return with<"numberWithShort:">(v); }
    static NSNumber* numberWithUnsignedShort(unsigned short v) {
        return with<"numberWithUnsignedShort:">(v);
    }
    static NSNumber* numberWithInt(int v) { return with<"numberWithInt:">(v); }
    static NSNumber* numberWithUnsignedInt(unsigned int v) {
        return with<"numberWithUnsignedInt:">(v);
    }
    static NSNumber* numberWithLong(long v) { return with<"numberWithLong:">(v); }
    static NSNumber* numberWithUnsignedLong(unsigned long v) {
        return with<"numberWithUnsignedLong:">(v);
    }
    static NSNumber* numberWithLongLong(long long v) { return with<"numberWithLongLong:">(v); }
    static NSNumber* numberWithUnsignedLongLong(unsigned long long v) {
        return with<"numberWithUnsignedLongLong:">(v);
    }
    static NSNumber* numberWithFloat(float v) { return with<"numberWithFloat:">(v); }
    static NSNumber* numberWithDouble(double v) { return with<"numberWithDouble:">(v); }
    static NSNumber* numberWithInteger(NSInteger v) { return with<"numberWithInteger:">(v); }
    static NSNumber* numberWithUnsignedInteger(NSUInteger v) {
        return with<"numberWithUnsignedInteger:">(v);
    }

    // Owned numbers from any C++ arithmetic value, keeping its kind: what
    // @(value) is.
    template <foundation::Boxable T>
    static objc::Strong<NSNumber> create(T value);

    NSNumber* initWithBool(bool v) { return init<"initWithBool:">(v); }
    NSNumber* initWithChar(char v) { return init<"initWithChar:">(v); }
    NSNumber* initWithInt(int v) { return init<"initWithInt:">(v); }
    NSNumber* initWithUnsignedInt(unsigned int v) { return init<"initWithUnsignedInt:">(v); }
    NSNumber* initWithLong(long v) { return init<"initWithLong:">(v); }
    NSNumber* initWithUnsignedLong(unsigned long v) { return init<"initWithUnsignedLong:">(v); }
    NSNumber* initWithLongLong(long long v) { return init<"initWithLongLong:">(v); }
    NSNumber* initWithUnsignedLongLong(unsigned long long v) {
        return init<"initWithUnsignedLongLong:">(v);
    }
    NSNumber* initWithFloat(float v) { return init<"initWithFloat:">(v); }
    NSNumber* initWithDouble(double v) { return init<"initWithDouble:">(v); }
    NSNumber* initWithInteger(NSInteger v) { return init<"initWithInteger:">(v); }
    NSNumber* initWithUnsignedInteger(NSUInteger v) { return init<"initWithUnsignedInteger:">(v); }

    bool boolValue() { return value<bool, "boolValue">(); }
    char charValue() { return value<char, "charValue">(); }
    unsigned char unsignedCharValue() { return value<unsigned char, "unsignedCharValue">(); }
    short shortValue() { return value<short, "shortValue">(); }
    unsigned short unsignedShortValue() { return value<unsigned short, "unsignedShortValue">(); }
    int intValue() { return value<int, "intValue">(); }
    unsigned int unsignedIntValue() { return value<unsigned int, "unsignedIntValue">(); }
    long longValue() { return value<long, "longValue">(); }
    unsigned long unsignedLongValue() { return value<unsigned long, "unsignedLongValue">(); }
    long long longLongValue() { return value<long long, "longLongValue">(); }
    unsigned long long unsignedLongLongValue() {
        return value<unsigned long long, "unsignedLongLongValue">();
    }
    NSInteger integerValue() { return value<NSInteger, "integerValue">(); }
    NSUInteger unsignedIntegerValue() { return value<NSUInteger, "unsignedIntegerValue">(); }
    float floatValue() { return value<float, "floatValue">(); }
    double doubleValue() { return value<double, "doubleValue">(); }

    NSString* stringValue() { return objc::msgSend<NSString*>(this, objc::sel<"stringValue">()); }
    // The encoding of the stored value: "c" (also for booleans), "s", "i", "q", "Q", "f", "d".
    const char* objCType() { return objc::msgSend<const char*>(this, objc::sel<"objCType">()); }
    NSComparisonResult compare(NSNumber* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"compare:">(), other);
    }
    bool isEqualToNumber(NSNumber* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToNumber:">(), other);
    }

    // For C++ readers such as the property-list writer, without a message.
    enum class Kind : unsigned char { Bool, Signed, Unsigned, Float, Double };
    Kind kind() const noexcept { return kind_; }
    bool isBoolean() const noexcept { return kind_ == Kind::Bool; }
    bool isFloatingPoint() const noexcept { return kind_ == Kind::Float || kind_ == Kind::Double; }
    long long signedStorage() const noexcept { return i_; }             // Bool and Signed
    unsigned long long unsignedStorage() const noexcept { return u_; }  // Unsigned
    double doubleStorage() const noexcept { return d_; }                // Float and Double

    NSNumber() = default;

  private:
    template <objc::FixedString Name, class T>
    static NSNumber* with(T v) {
        return objc::msgSend<NSNumber*>(objcClass(), objc::sel<Name>(), v);
    }
    template <objc::FixedString Name, class T>
    NSNumber* init(T v) {
        return objc::msgSend<NSNumber*>(this, objc::sel<Name>(), v);
    }
    template <class R, objc::FixedString Name>
    R value() {
        return objc::msgSend<R>(this, objc::sel<Name>());
    }

    // Stores a value; the encoding is the one objCType answers.
    void setSigned(long long v, char type);
    void setUnsigned(unsigned long long v, char type);
    void setFloating(double v, Kind kind);
    static objc::Strong<NSNumber> createBool(bool v);
    static objc::Strong<NSNumber> createSigned(long long v, char type);
    static objc::Strong<NSNumber> createUnsigned(unsigned long long v, char type);
    static objc::Strong<NSNumber> createFloating(double v, Kind kind);

    // Conversions with C semantics from the stored value.
    template <class R>
    R convert() const noexcept;
    NSComparisonResult compareTo(const NSNumber& other) const noexcept;

    friend struct NSNumberMethods;  // the runtime methods, in NSNumber.cpp

    Kind kind_ = Kind::Signed;
    char type_ = 'i';
    union {
        long long i_ = 0;
        unsigned long long u_;
        double d_;
    };
};

template <foundation::Boxable T>
objc::Strong<NSNumber> NSNumber::create(T value) {
    if constexpr (std::is_enum_v<T>) {
        return create(static_cast<std::underlying_type_t<T>>(value));
    } else if constexpr (std::is_same_v<T, bool>) {
        return createBool(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        return createFloating(static_cast<double>(value),
                              std::is_same_v<T, float> ? Kind::Float : Kind::Double);
    } else if constexpr (std::is_signed_v<T>) {
        constexpr char type = sizeof(T) == 1   ? 'c'
                              : sizeof(T) == 2 ? 's'
                              : sizeof(T) == 4 ? 'i'
                                               : 'q';
        return createSigned(static_cast<long long>(value), type);
    } else {
        // Unsigned values are widened to the next signed size, as the platform stores them.
        constexpr char type = sizeof(T) == 1 ? 's' : sizeof(T) == 2 ? 'i' : 'q';
        return createUnsigned(static_cast<unsigned long long>(value), type);
    }
}
