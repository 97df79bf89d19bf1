#include <Foundation/NSNumber.h>

#include "string_internal.h"

#include <objc/image.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>

OBJC_DEFINE_CLASS(NSNumber, NSObject, "NSNumber")
OBJC_REGISTER_CLASS(NSNumber)

namespace {

template <class T>
constexpr char encodingFor() {
    if constexpr (std::is_signed_v<T>) {
        return sizeof(T) == 1 ? 'c' : sizeof(T) == 2 ? 's' : sizeof(T) == 4 ? 'i' : 'q';
    } else {
        return sizeof(T) == 1 ? 's' : sizeof(T) == 2 ? 'i' : 'q';
    }
}

NSUInteger mix(unsigned long long v) {
    v ^= v >> 33;
    v *= 0xff51afd7ed558ccdULL;
    v ^= v >> 33;
    return static_cast<NSUInteger>(v);
}

constexpr long double kTwo63 = 9223372036854775808.0L;

}  // namespace

// The runtime methods; a friend, so that they reach the stored value.
struct NSNumberMethods {
    static NSNumber* sharedBool(bool v) {
        static NSNumber* const yes = immortal(true);
        static NSNumber* const no = immortal(false);
        return v ? yes : no;
    }
    static NSNumber* immortal(bool v) {
        NSNumber* n = objc::alloc<NSNumber>();
        n->kind_ = NSNumber::Kind::Bool;
        n->type_ = 'c';
        n->i_ = v ? 1 : 0;
        n->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
        return n;
    }

    // Small integers are shared and never die, as tagged numbers are on the
    // platform: settings and counters are mostly such values, and handing
    // them out then costs no reference counting. Null outside the range.
    static NSNumber* sharedSmall(long long v, char type) {
        constexpr long long kLowest = -1;
        constexpr long long kHighest = 255;
        static constexpr char kTypes[] = {'c', 's', 'i', 'q'};
        static constexpr std::size_t kCount = kHighest - kLowest + 1;
        static const auto table = [] {
            std::array<std::array<NSNumber*, kCount>, std::size(kTypes)> numbers{};
            for (std::size_t t = 0; t < std::size(kTypes); ++t) {
                for (std::size_t i = 0; i < kCount; ++i) {
                    NSNumber* n = objc::alloc<NSNumber>();
                    n->setSigned(kLowest + static_cast<long long>(i), kTypes[t]);
                    n->refs_.store(objc_object::kImmortalRefs, std::memory_order_relaxed);
                    numbers[t][i] = n;
                }
            }
            return numbers;
        }();
        if (v < kLowest || v > kHighest) return nullptr;
        for (std::size_t t = 0; t < std::size(kTypes); ++t) {
            if (kTypes[t] == type) return table[t][static_cast<std::size_t>(v - kLowest)];
        }
        return nullptr;
    }

    template <class T>
    static bool fitsSmall(T v) {
        if constexpr (std::is_signed_v<T>) {
            return v >= -1 && v <= 255;
        } else {
            return v <= 255;
        }
    }

    template <class T>
    static NSNumber* numberWith(Class, SEL, T v) {
        return objc::autorelease(NSNumber::create(v).leak());
    }

    template <class T>
    static NSNumber* initWith(NSNumber* self, SEL, T v) {
        if constexpr (std::is_same_v<T, bool>) {
            objc_release(self);
            return sharedBool(v);
        } else if constexpr (std::is_floating_point_v<T>) {
            self->setFloating(
                v, std::is_same_v<T, float> ? NSNumber::Kind::Float : NSNumber::Kind::Double);
        } else {
            if (fitsSmall(v)) {
                if (NSNumber* shared = sharedSmall(static_cast<long long>(v), encodingFor<T>())) {
                    objc_release(self);
                    return shared;
                }
            }
            if constexpr (std::is_signed_v<T>) {
                self->setSigned(v, encodingFor<T>());
            } else {
                self->setUnsigned(v, encodingFor<T>());
            }
        }
        return self;
    }

    template <class R>
    static R value(NSNumber* self, SEL) {
        return self->convert<R>();
    }

    static NSString* stringValue(NSNumber* self, SEL) {
        char buffer[64];
        switch (self->kind_) {
            case NSNumber::Kind::Bool:
            case NSNumber::Kind::Signed:
                std::snprintf(buffer, sizeof buffer, "%lld", self->i_);
                break;
            case NSNumber::Kind::Unsigned:
                std::snprintf(buffer, sizeof buffer, "%llu", self->u_);
                break;
            case NSNumber::Kind::Float:
                std::snprintf(buffer, sizeof buffer, "%0.7g", self->d_);
                break;
            case NSNumber::Kind::Double:
                std::snprintf(buffer, sizeof buffer, "%0.16g", self->d_);
                break;
        }
        return foundation::text::makeString(std::string_view(buffer));
    }

    static const char* objCType(NSNumber* self, SEL) {
        switch (self->type_) {
            case 'c':
                return "c";
            case 's':
                return "s";
            case 'i':
                return "i";
            case 'Q':
                return "Q";
            case 'f':
                return "f";
            case 'd':
                return "d";
            default:
                return "q";
        }
    }

    static NSComparisonResult compare(NSNumber* self, SEL, NSNumber* other) {
        if (other == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "-[NSNumber compare:]: nil argument");
        }
        return self->compareTo(*other);
    }

    static bool isEqualToNumber(NSNumber* self, SEL, NSNumber* other) {
        return other != nullptr && self->compareTo(*other) == NSOrderedSame;
    }

    static bool isEqual(NSNumber* self, SEL, id other) {
        const NSNumber* n = objc::cast<NSNumber>(other);
        return n != nullptr && self->compareTo(*n) == NSOrderedSame;
    }

    // Equal values hash equal whatever their kinds: integral values hash as integers.
    static NSUInteger hash(NSNumber* self, SEL) {
        switch (self->kind_) {
            case NSNumber::Kind::Bool:
            case NSNumber::Kind::Signed:
                return mix(static_cast<unsigned long long>(self->i_));
            case NSNumber::Kind::Unsigned:
                return mix(self->u_);
            default:
                break;
        }
        const double d = self->d_;
        if (std::isnan(d)) return 0x7ff8;
        if (std::trunc(d) == d) {
            const long double ld = d;
            if (ld >= -kTwo63 && ld < kTwo63) {
                return mix(static_cast<unsigned long long>(static_cast<long long>(d)));
            }
            if (ld >= 0 && ld < 2 * kTwo63) return mix(static_cast<unsigned long long>(d));
        }
        return mix(std::bit_cast<unsigned long long>(d));
    }

    static id copyWithZone(NSNumber* self, SEL, void*) { return objc_retain(self); }
};

void NSNumber::objcDefine(objc::ClassBuilder<NSNumber>& b) {
    using M = NSNumberMethods;
    b.classImp<&M::numberWith<bool>>("numberWithBool:")
        .classImp<&M::numberWith<char>>("numberWithChar:")
        .classImp<&M::numberWith<unsigned char>>("numberWithUnsignedChar:")
        .classImp<&M::numberWith<short>>("numberWithShort:")
        .classImp<&M::numberWith<unsigned short>>("numberWithUnsignedShort:")
        .classImp<&M::numberWith<int>>("numberWithInt:")
        .classImp<&M::numberWith<unsigned int>>("numberWithUnsignedInt:")
        .classImp<&M::numberWith<long>>("numberWithLong:")
        .classImp<&M::numberWith<unsigned long>>("numberWithUnsignedLong:")
        .classImp<&M::numberWith<long long>>("numberWithLongLong:")
        .classImp<&M::numberWith<unsigned long long>>("numberWithUnsignedLongLong:")
        .classImp<&M::numberWith<float>>("numberWithFloat:")
        .classImp<&M::numberWith<double>>("numberWithDouble:")
        .classImp<&M::numberWith<NSInteger>>("numberWithInteger:")
        .classImp<&M::numberWith<NSUInteger>>("numberWithUnsignedInteger:")
        .imp<&M::initWith<bool>>("initWithBool:")
        .imp<&M::initWith<char>>("initWithChar:")
        .imp<&M::initWith<unsigned char>>("initWithUnsignedChar:")
        .imp<&M::initWith<short>>("initWithShort:")
        .imp<&M::initWith<unsigned short>>("initWithUnsignedShort:")
        .imp<&M::initWith<int>>("initWithInt:")
        .imp<&M::initWith<unsigned int>>("initWithUnsignedInt:")
        .imp<&M::initWith<long>>("initWithLong:")
        .imp<&M::initWith<unsigned long>>("initWithUnsignedLong:")
        .imp<&M::initWith<long long>>("initWithLongLong:")
        .imp<&M::initWith<unsigned long long>>("initWithUnsignedLongLong:")
        .imp<&M::initWith<float>>("initWithFloat:")
        .imp<&M::initWith<double>>("initWithDouble:")
        .imp<&M::initWith<NSInteger>>("initWithInteger:")
        .imp<&M::initWith<NSUInteger>>("initWithUnsignedInteger:")
        .imp<&M::value<bool>>("boolValue")
        .imp<&M::value<char>>("charValue")
        .imp<&M::value<unsigned char>>("unsignedCharValue")
        .imp<&M::value<short>>("shortValue")
        .imp<&M::value<unsigned short>>("unsignedShortValue")
        .imp<&M::value<int>>("intValue")
        .imp<&M::value<unsigned int>>("unsignedIntValue")
        .imp<&M::value<long>>("longValue")
        .imp<&M::value<unsigned long>>("unsignedLongValue")
        .imp<&M::value<long long>>("longLongValue")
        .imp<&M::value<unsigned long long>>("unsignedLongLongValue")
        .imp<&M::value<NSInteger>>("integerValue")
        .imp<&M::value<NSUInteger>>("unsignedIntegerValue")
        .imp<&M::value<float>>("floatValue")
        .imp<&M::value<double>>("doubleValue")
        .imp<&M::stringValue>("stringValue")
        .imp<&M::stringValue>("description")
        .imp<&M::objCType>("objCType")
        .imp<&M::compare>("compare:")
        .imp<&M::isEqualToNumber>("isEqualToNumber:")
        .imp<&M::isEqual>("isEqual:")
        .imp<&M::hash>("hash")
        .imp<&M::copyWithZone>("copyWithZone:");
}

void NSNumber::setSigned(long long v, char type) {
    kind_ = Kind::Signed;
    type_ = type;
    i_ = v;
}

// Unsigned values that fit a signed 64-bit integer are stored as signed, as
// the platform does; only larger ones keep the unsigned kind ("Q").
void NSNumber::setUnsigned(unsigned long long v, char type) {
    if (v <= static_cast<unsigned long long>(std::numeric_limits<long long>::max())) {
        setSigned(static_cast<long long>(v), type);
        return;
    }
    kind_ = Kind::Unsigned;
    type_ = 'Q';
    u_ = v;
}

void NSNumber::setFloating(double v, Kind kind) {
    kind_ = kind;
    type_ = kind == Kind::Float ? 'f' : 'd';
    d_ = v;
}

objc::Strong<NSNumber> NSNumber::createBool(bool v) {
    return objc::retained(NSNumberMethods::sharedBool(v));
}

objc::Strong<NSNumber> NSNumber::createSigned(long long v, char type) {
    if (NSNumber* shared = NSNumberMethods::sharedSmall(v, type)) return objc::retained(shared);
    auto n = objc::adopt(objc::alloc<NSNumber>());
    n->setSigned(v, type);
    return n;
}

objc::Strong<NSNumber> NSNumber::createUnsigned(unsigned long long v, char type) {
    if (v <= 255) {
        if (NSNumber* shared = NSNumberMethods::sharedSmall(static_cast<long long>(v), type)) {
            return objc::retained(shared);
        }
    }
    auto n = objc::adopt(objc::alloc<NSNumber>());
    n->setUnsigned(v, type);
    return n;
}

objc::Strong<NSNumber> NSNumber::createFloating(double v, Kind kind) {
    auto n = objc::adopt(objc::alloc<NSNumber>());
    n->setFloating(v, kind);
    return n;
}

// C conversions, made total: floating values beyond an integer type clamp to
// its limits (through long long for unsigned types, so -1.0 reads as the
// all-ones value as with integers) and NaN reads as zero.
template <class R>
R NSNumber::convert() const noexcept {
    switch (kind_) {
        case Kind::Bool:
        case Kind::Signed:
            return static_cast<R>(i_);
        case Kind::Unsigned:
            return static_cast<R>(u_);
        default:
            break;
    }
    if constexpr (std::is_floating_point_v<R> || std::is_same_v<R, bool>) {
        return static_cast<R>(d_);
    } else {
        if (std::isnan(d_)) return 0;
        if constexpr (std::is_signed_v<R>) {
            const long double lo = std::numeric_limits<R>::min(),
                              hi = std::numeric_limits<R>::max();
            if (d_ <= lo) return std::numeric_limits<R>::min();
            if (d_ >= hi) return std::numeric_limits<R>::max();
            return static_cast<R>(d_);
        } else {
            if (d_ >= static_cast<long double>(std::numeric_limits<R>::max())) {
                return std::numeric_limits<R>::max();
            }
            if (d_ >= 0) return static_cast<R>(d_);
            if (d_ <= -kTwo63) return static_cast<R>(std::numeric_limits<long long>::min());
            return static_cast<R>(static_cast<long long>(d_));
        }
    }
}

NSComparisonResult NSNumber::compareTo(const NSNumber& other) const noexcept {
    const auto order = [](auto a, auto b) {
        return a < b ? NSOrderedAscending : b < a ? NSOrderedDescending : NSOrderedSame;
    };
    const bool floating = isFloatingPoint() || other.isFloatingPoint();
    if (!floating) {
        // Unsigned storage only holds values above every signed one.
        if (kind_ == Kind::Unsigned && other.kind_ == Kind::Unsigned) return order(u_, other.u_);
        if (kind_ == Kind::Unsigned) return NSOrderedDescending;
        if (other.kind_ == Kind::Unsigned) return NSOrderedAscending;
        return order(i_, other.i_);
    }
    // long double holds every 64-bit integer exactly.
    const auto wide = [](const NSNumber& n) -> long double {
        switch (n.kind_) {
            case Kind::Bool:
            case Kind::Signed:
                return static_cast<long double>(n.i_);
            case Kind::Unsigned:
                return static_cast<long double>(n.u_);
            default:
                return n.d_;
        }
    };
    const long double a = wide(*this), b = wide(other);
    // NaN equals itself and orders below every number.
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b) ? NSOrderedSame
               : std::isnan(a)                ? NSOrderedAscending
                                              : NSOrderedDescending;
    }
    return order(a, b);
}
