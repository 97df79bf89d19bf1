// A point in time, independent of calendars and time zones.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/object.h>
#include <objc/string.h>

using NSTimeInterval = double;

// Seconds from 1970-01-01 to 2001-01-01, both 00:00:00 UTC.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

class PV_EXPORT NSDate : public NSObject {
    OBJC_CLASS(NSDate)

    // An owned date at the given seconds since 2001-01-01 00:00:00 UTC.
    static objc::Strong<NSDate> create(NSTimeInterval sinceReferenceDate);
    // Seconds since the reference date, without a message.
    NSTimeInterval interval() const noexcept { return interval_; }

    // Autoreleased dates.
    static NSDate* date() { return objc::msgSend<NSDate*>(objcClass(), objc::sel<"date">()); }
    static NSDate* dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(objcClass(), objc::sel<"dateWithTimeIntervalSinceNow:">(),
                                      seconds);
    }
    static NSDate* dateWithTimeIntervalSince1970(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(objcClass(), objc::sel<"dateWithTimeIntervalSince1970:">(),
                                      seconds);
    }
    static NSDate* dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(
            objcClass(), objc::sel<"dateWithTimeIntervalSinceReferenceDate:">(), seconds);
    }
    static NSDate* distantPast() {
        return objc::msgSend<NSDate*>(objcClass(), objc::sel<"distantPast">());
    }
    static NSDate* distantFuture() {
        return objc::msgSend<NSDate*>(objcClass(), objc::sel<"distantFuture">());
    }
    // The current time as seconds since the reference date.
    static NSTimeInterval timeIntervalSinceReferenceDateNow();

    NSDate* initWithTimeIntervalSinceNow(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(this, objc::sel<"initWithTimeIntervalSinceNow:">(), seconds);
    }
    NSDate* initWithTimeIntervalSince1970(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(this, objc::sel<"initWithTimeIntervalSince1970:">(), seconds);
    }
    NSDate* initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(this, objc::sel<"initWithTimeIntervalSinceReferenceDate:">(),
                                      seconds);
    }
    NSDate* initWithTimeIntervalSinceDate(NSTimeInterval seconds, NSDate* date) {
        return objc::msgSend<NSDate*>(this, objc::sel<"initWithTimeInterval:sinceDate:">(), seconds,
                                      date);
    }

    NSTimeInterval timeIntervalSince1970() {
        return objc::msgSend<NSTimeInterval>(this, objc::sel<"timeIntervalSince1970">());
    }
    NSTimeInterval timeIntervalSinceReferenceDate() {
        return objc::msgSend<NSTimeInterval>(this, objc::sel<"timeIntervalSinceReferenceDate">());
    }
    NSTimeInterval timeIntervalSinceNow() {
        return objc::msgSend<NSTimeInterval>(this, objc::sel<"timeIntervalSinceNow">());
    }
    NSTimeInterval timeIntervalSinceDate(NSDate* other) {
        return objc::msgSend<NSTimeInterval>(this, objc::sel<"timeIntervalSinceDate:">(), other);
    }
    NSDate* dateByAddingTimeInterval(NSTimeInterval seconds) {
        return objc::msgSend<NSDate*>(this, objc::sel<"dateByAddingTimeInterval:">(), seconds);
    }
    NSComparisonResult compare(NSDate* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"compare:">(), other);
    }
    bool isEqualToDate(NSDate* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToDate:">(), other);
    }
    NSDate* earlierDate(NSDate* other) {
        return objc::msgSend<NSDate*>(this, objc::sel<"earlierDate:">(), other);
    }
    NSDate* laterDate(NSDate* other) {
        return objc::msgSend<NSDate*>(this, objc::sel<"laterDate:">(), other);
    }

    NSDate() = default;

  private:
    static NSDate* imp_date(Class cls);
    static NSDate* imp_dateWithTimeIntervalSinceNow(Class cls, NSTimeInterval seconds);
    static NSDate* imp_dateWithTimeIntervalSince1970(Class cls, NSTimeInterval seconds);
    static NSDate* imp_dateWithTimeIntervalSinceReferenceDate(Class cls, NSTimeInterval seconds);
    static NSDate* imp_distantPast(Class cls);
    static NSDate* imp_distantFuture(Class cls);
    NSDate* imp_init();
    NSDate* imp_initWithTimeIntervalSinceNow(NSTimeInterval seconds);
    NSDate* imp_initWithTimeIntervalSince1970(NSTimeInterval seconds);
    NSDate* imp_initWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds);
    NSDate* imp_initWithTimeIntervalSinceDate(NSTimeInterval seconds, NSDate* date);
    NSTimeInterval imp_timeIntervalSince1970() const;
    NSTimeInterval imp_timeIntervalSinceNow() const;
    NSTimeInterval imp_timeIntervalSinceDate(NSDate* other) const;
    NSDate* imp_dateByAddingTimeInterval(NSTimeInterval seconds) const;
    NSComparisonResult imp_compare(NSDate* other) const;
    bool imp_isEqual(id other) const;
    bool imp_isEqualToDate(NSDate* other) const;
    NSUInteger imp_hash() const;
    NSDate* imp_earlierDate(NSDate* other);
    NSDate* imp_laterDate(NSDate* other);
    NSString* imp_description() const;
    id imp_copyWithZone(void* zone);

    NSTimeInterval interval_ = 0;  // seconds since the reference date
};
