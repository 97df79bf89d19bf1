#include <Foundation/NSDate.h>

#include <objc/image.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

using objc::msgSend;
using objc::sel;

// The platform's limits: 0001-01-01 in the Julian calendar and 4001-01-01.
constexpr NSTimeInterval kDistantPast = -63114076800.0;
constexpr NSTimeInterval kDistantFuture = 63113904000.0;

NSDate* autoreleasedDate(Class cls, NSTimeInterval sinceReferenceDate) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithTimeIntervalSinceReferenceDate:">(), sinceReferenceDate);
    return static_cast<NSDate*>(objc_autorelease(obj));
}

struct CivilDate {
    long long year;
    unsigned month;
    unsigned day;
};

// The proleptic Gregorian date of a day counted from 1970-01-01.
CivilDate civilFromDays(long long days) {
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned mp = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * mp + 2) / 5 + 1;
    const unsigned month = mp < 10 ? mp + 3 : mp - 9;
    const long long year = static_cast<long long>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
    return {year, month, day};
}

NSDate* requireDate(NSDate* other, const char* method) {
    if (other == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("*** -[NSDate ") + method + "]: nil argument");
    }
    return other;
}

}  // namespace

OBJC_DEFINE_CLASS(NSDate, NSObject, "NSDate")
OBJC_REGISTER_CLASS(NSDate)

void NSDate::objcDefine(objc::ClassBuilder<NSDate>& b) {
    b.classMethod<&NSDate::imp_date>("date")
        .classMethod<&NSDate::imp_dateWithTimeIntervalSinceNow>("dateWithTimeIntervalSinceNow:")
        .classMethod<&NSDate::imp_dateWithTimeIntervalSince1970>("dateWithTimeIntervalSince1970:")
        .classMethod<&NSDate::imp_dateWithTimeIntervalSinceReferenceDate>(
            "dateWithTimeIntervalSinceReferenceDate:")
        .classMethod<&NSDate::imp_distantPast>("distantPast")
        .classMethod<&NSDate::imp_distantFuture>("distantFuture")
        .method<&NSDate::imp_init>("init")
        .method<&NSDate::imp_initWithTimeIntervalSinceNow>("initWithTimeIntervalSinceNow:")
        .method<&NSDate::imp_initWithTimeIntervalSince1970>("initWithTimeIntervalSince1970:")
        .method<&NSDate::imp_initWithTimeIntervalSinceReferenceDate>(
            "initWithTimeIntervalSinceReferenceDate:")
        .method<&NSDate::imp_initWithTimeIntervalSinceDate>("initWithTimeInterval:sinceDate:")
        .method<&NSDate::imp_timeIntervalSince1970>("timeIntervalSince1970")
        .property<&NSDate::interval_>("timeIntervalSinceReferenceDate",
                                      objc::Readonly | objc::Nonatomic)
        .method<&NSDate::imp_timeIntervalSinceNow>("timeIntervalSinceNow")
        .method<&NSDate::imp_timeIntervalSinceDate>("timeIntervalSinceDate:")
        .method<&NSDate::imp_dateByAddingTimeInterval>("dateByAddingTimeInterval:")
        .method<&NSDate::imp_compare>("compare:")
        .method<&NSDate::imp_isEqual>("isEqual:")
        .method<&NSDate::imp_isEqualToDate>("isEqualToDate:")
        .method<&NSDate::imp_hash>("hash")
        .method<&NSDate::imp_earlierDate>("earlierDate:")
        .method<&NSDate::imp_laterDate>("laterDate:")
        .method<&NSDate::imp_description>("description")
        .method<&NSDate::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSDate> NSDate::create(NSTimeInterval sinceReferenceDate) {
    id obj = msgSend<id>(objcClass(), sel<"alloc">());
    return objc::adopt(static_cast<NSDate*>(
        msgSend<id>(obj, sel<"initWithTimeIntervalSinceReferenceDate:">(), sinceReferenceDate)));
}

NSTimeInterval NSDate::timeIntervalSinceReferenceDateNow() {
    using Seconds = std::chrono::duration<double>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Seconds>(sinceEpoch).count() - NSTimeIntervalSince1970;
}

NSDate* NSDate::imp_date(Class cls) {
    id obj = msgSend<id>(msgSend<id>(cls, sel<"alloc">()), sel<"init">());
    return static_cast<NSDate*>(objc_autorelease(obj));
}

NSDate* NSDate::imp_dateWithTimeIntervalSinceNow(Class cls, NSTimeInterval seconds) {
    return autoreleasedDate(cls, timeIntervalSinceReferenceDateNow() + seconds);
}

NSDate* NSDate::imp_dateWithTimeIntervalSince1970(Class cls, NSTimeInterval seconds) {
    return autoreleasedDate(cls, seconds - NSTimeIntervalSince1970);
}

NSDate* NSDate::imp_dateWithTimeIntervalSinceReferenceDate(Class cls, NSTimeInterval seconds) {
    return autoreleasedDate(cls, seconds);
}

NSDate* NSDate::imp_distantPast(Class cls) {
    return autoreleasedDate(cls, kDistantPast);
}

NSDate* NSDate::imp_distantFuture(Class cls) {
    return autoreleasedDate(cls, kDistantFuture);
}

// A plain init is "now", as on the platform.
NSDate* NSDate::imp_init() {
    interval_ = timeIntervalSinceReferenceDateNow();
    return this;
}

NSDate* NSDate::imp_initWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    interval_ = timeIntervalSinceReferenceDateNow() + seconds;
    return this;
}

NSDate* NSDate::imp_initWithTimeIntervalSince1970(NSTimeInterval seconds) {
    interval_ = seconds - NSTimeIntervalSince1970;
    return this;
}

NSDate* NSDate::imp_initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
    interval_ = seconds;
    return this;
}

NSDate* NSDate::imp_initWithTimeIntervalSinceDate(NSTimeInterval seconds, NSDate* date) {
    if (date == nullptr) {
        objc_release(this);  // a failed init frees the object
        requireDate(date, "initWithTimeInterval:sinceDate:");
    }
    interval_ = date->timeIntervalSinceReferenceDate() + seconds;
    return this;
}

NSTimeInterval NSDate::imp_timeIntervalSince1970() const {
    return interval_ + NSTimeIntervalSince1970;
}

NSTimeInterval NSDate::imp_timeIntervalSinceNow() const {
    return interval_ - timeIntervalSinceReferenceDateNow();
}

NSTimeInterval NSDate::imp_timeIntervalSinceDate(NSDate* other) const {
    return interval_ -
           requireDate(other, "timeIntervalSinceDate:")->timeIntervalSinceReferenceDate();
}

NSDate* NSDate::imp_dateByAddingTimeInterval(NSTimeInterval seconds) const {
    return autoreleasedDate(object_getClass(const_cast<NSDate*>(this)), interval_ + seconds);
}

NSComparisonResult NSDate::imp_compare(NSDate* other) const {
    const NSTimeInterval theirs = requireDate(other, "compare:")->timeIntervalSinceReferenceDate();
    if (interval_ < theirs) return NSOrderedAscending;
    if (interval_ > theirs) return NSOrderedDescending;
    return NSOrderedSame;
}

bool NSDate::imp_isEqual(id other) const {
    if (other == this) return true;
    auto* date = objc::cast<NSDate>(other);
    return date != nullptr && imp_isEqualToDate(date);
}

bool NSDate::imp_isEqualToDate(NSDate* other) const {
    return other != nullptr && other->timeIntervalSinceReferenceDate() == interval_;
}

NSUInteger NSDate::imp_hash() const {
    // Equal intervals hash equal; +0.0 and -0.0 are equal too.
    const double value = interval_ == 0 ? 0.0 : interval_;
    return std::bit_cast<NSUInteger>(value);
}

NSDate* NSDate::imp_earlierDate(NSDate* other) {
    if (other == nullptr) return this;
    return other->timeIntervalSinceReferenceDate() < interval_ ? other : this;
}

NSDate* NSDate::imp_laterDate(NSDate* other) {
    if (other == nullptr) return this;
    return other->timeIntervalSinceReferenceDate() > interval_ ? other : this;
}

NSString* NSDate::imp_description() const {
    const double seconds = std::floor(interval_ + NSTimeIntervalSince1970);
    if (!std::isfinite(seconds) || std::fabs(seconds) > 1e15) {
        return objc::autorelease(NSString::create(std::to_string(interval_)).leak());
    }
    const auto total = static_cast<long long>(seconds);
    const long long days = total >= 0 ? total / 86400 : (total - 86399) / 86400;
    const long long secondOfDay = total - days * 86400;
    const CivilDate civil = civilFromDays(days);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02u %02lld:%02lld:%02lld +0000", civil.year,
                  civil.month, civil.day, secondOfDay / 3600, secondOfDay / 60 % 60,
                  secondOfDay % 60);
    return objc::autorelease(NSString::create(buffer).leak());
}

// Immutable: the date is its own copy.
id NSDate::imp_copyWithZone(void*) {
    return objc_retain(this);
}
