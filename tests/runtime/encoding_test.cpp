// Compile-time encodings: the checks are static_asserts, so a regression fails the build.
#include <objc/encoding.h>
#include <objc/geometry.h>
#include <objc/string.h>

#include <string_view>

namespace {

using objc::encodingOf;
using objc::methodEncoding;

template <class T>
constexpr bool encodes(std::string_view expected) {
    return std::string_view(encodingOf<T>()) == expected;
}

struct Widget : objc_object {};
struct Gadget : Widget {};
struct Callback : objc_object {};
struct Plain {
    int a;
};
struct Opaque;
struct Undeclared;  // an object class seen only by name
enum class Mode : unsigned short { kA, kB };
enum Legacy : int { kLegacyA };
enum Row : NSInteger { kRowA };

}  // namespace

template <>
struct objc::IsBlock<Callback> : std::true_type {};
template <>
struct objc::TypeEncoding<Opaque> : objc::StructEncoding<"Opaque"> {};
template <>
struct objc::TypeEncoding<Plain> : objc::StructEncoding<"Plain", int> {};

namespace {

struct Sample {
    char tag;
    double values[3];
    Widget* owner;
    const CGPoint* anchor;
};
union Number {
    int i;
    double d;
};

}  // namespace

template <>
struct objc::TypeEncoding<Sample>
    : objc::StructEncoding<"Sample", char, double[3], Widget*, const CGPoint*> {};
template <>
struct objc::TypeEncoding<Number> : objc::UnionEncoding<"Number", int, double> {};

namespace {

// Scalars, with long taking the LP64 "q".
static_assert(encodes<void>("v") && encodes<bool>("B") && encodes<BOOL>("B"));
static_assert(encodes<char>("c") && encodes<signed char>("c") && encodes<unsigned char>("C"));
static_assert(encodes<int>("i") && encodes<unsigned int>("I"));
static_assert(encodes<long>("q") && encodes<unsigned long>("Q"));
static_assert(encodes<NSInteger>("q") && encodes<NSUInteger>("Q"));
static_assert(encodes<float>("f") && encodes<double>("d") && encodes<long double>("D"));
static_assert(encodes<const int>("i") && encodes<volatile double>("d"));
static_assert(encodes<Mode>("S") && encodes<Legacy>("i"));
// An enumeration encodes as its underlying type, so methods keep their integer encodings.
static_assert(encodes<Row>(encodingOf<NSInteger>()) &&
              encodes<NSStringCompareOptions>(encodingOf<NSUInteger>()));
static_assert(std::string_view(methodEncoding<Row, NSStringCompareOptions>()) ==
              methodEncoding<NSInteger, NSUInteger>());

// Runtime types and objects: a class is "#" although it is an object too.
static_assert(encodes<id>("@") && encodes<Widget*>("@") && encodes<Gadget*>("@"));
static_assert(encodes<const Widget*>("@") && encodes<Widget* const>("@"));
static_assert(encodes<Class>("#") && encodes<SEL>(":") && encodes<objc_selector*>(":"));
static_assert(encodes<Callback*>("@?"));

// Strings and other pointers.
static_assert(encodes<char*>("*") && encodes<const char*>("r*") &&
              encodes<const char* const>("r*"));
static_assert(encodes<void*>("^v") && encodes<const void*>("r^v"));
static_assert(encodes<int*>("^i") && encodes<const int*>("r^i") && encodes<int**>("^^i"));
static_assert(encodes<const char**>("^r*") && encodes<id*>("^@") && encodes<unsigned char*>("^C"));
static_assert(encodes<IMP>("^?") && encodes<Opaque*>("^{Opaque=}") && encodes<Undeclared*>("@"));
static_assert(encodes<Plain*>("^{Plain=i}") && encodes<const Plain*>("r^{Plain=i}"));
static_assert(encodes<int[4]>("[4i]") && encodes<CGPoint[12]>("[12{CGPoint=dd}]"));

// Structures.
static_assert(encodes<CGRect>("{CGRect={CGPoint=dd}{CGSize=dd}}"));
static_assert(encodes<NSRange>("{_NSRange=QQ}"));
static_assert(encodes<Sample>("{Sample=c[3d]@r^{CGPoint=dd}}"));
static_assert(encodes<Number>("(Number=id)"));

// Methods: result, receiver, selector, arguments.
static_assert(std::string_view(methodEncoding<void, id>()) == "v@:@");
static_assert(std::string_view(methodEncoding<id>()) == "@@:");
static_assert(std::string_view(methodEncoding<void, SEL, Class>()) == "v@::#");
static_assert(std::string_view(methodEncoding<CGRect, CGPoint, NSInteger>()) ==
              "{CGRect={CGPoint=dd}{CGSize=dd}}@:{CGPoint=dd}q");
static_assert(std::string_view(methodEncoding<BOOL, const char*, const double>()) == "B@:r*d");

}  // namespace
