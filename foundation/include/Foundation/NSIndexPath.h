// A path of indexes into nested collections: (section, row) for tables.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/object.h>
#include <objc/string.h>

#include <span>
#include <vector>

class PV_EXPORT NSIndexPath : public NSObject {
    OBJC_CLASS(NSIndexPath)

    // An owned path.
    static objc::Strong<NSIndexPath> create(std::vector<NSUInteger> indexes);
    // The indexes, without messages.
    std::span<const NSUInteger> indexes() const noexcept { return indexes_; }

    // Autoreleased paths.
    static NSIndexPath* indexPathForRowInSection(NSInteger row, NSInteger section) {
        return objc::msgSend<NSIndexPath*>(objcClass(), objc::sel<"indexPathForRow:inSection:">(),
                                           row, section);
    }
    static NSIndexPath* indexPathForItemInSection(NSInteger item, NSInteger section) {
        return objc::msgSend<NSIndexPath*>(objcClass(), objc::sel<"indexPathForItem:inSection:">(),
                                           item, section);
    }
    static NSIndexPath* indexPathWithIndex(NSUInteger index) {
        return objc::msgSend<NSIndexPath*>(objcClass(), objc::sel<"indexPathWithIndex:">(), index);
    }
    static NSIndexPath* indexPathWithIndexesLength(const NSUInteger* indexes, NSUInteger length) {
        return objc::msgSend<NSIndexPath*>(objcClass(), objc::sel<"indexPathWithIndexes:length:">(),
                                           indexes, length);
    }
    NSIndexPath* initWithIndexesLength(const NSUInteger* indexes, NSUInteger length) {
        return objc::msgSend<NSIndexPath*>(this, objc::sel<"initWithIndexes:length:">(), indexes,
                                           length);
    }

    // Index 0 is the section, index 1 the row (or item); NSNotFound when absent.
    NSInteger section() { return objc::msgSend<NSInteger>(this, objc::sel<"section">()); }
    NSInteger row() { return objc::msgSend<NSInteger>(this, objc::sel<"row">()); }
    NSInteger item() { return objc::msgSend<NSInteger>(this, objc::sel<"item">()); }
    NSUInteger length() { return objc::msgSend<NSUInteger>(this, objc::sel<"length">()); }
    // NSNotFound past the end.
    NSUInteger indexAtPosition(NSUInteger position) {
        return objc::msgSend<NSUInteger>(this, objc::sel<"indexAtPosition:">(), position);
    }
    // An autoreleased path one index longer.
    NSIndexPath* indexPathByAddingIndex(NSUInteger index) {
        return objc::msgSend<NSIndexPath*>(this, objc::sel<"indexPathByAddingIndex:">(), index);
    }
    // Lexicographic; a path sorts after its own prefixes.
    NSComparisonResult compare(NSIndexPath* other) {
        return objc::msgSend<NSComparisonResult>(this, objc::sel<"compare:">(), other);
    }

    NSIndexPath() = default;

  private:
    static NSIndexPath* imp_indexPathForRowInSection(Class cls, NSInteger row, NSInteger section);
    static NSIndexPath* imp_indexPathWithIndex(Class cls, NSUInteger index);
    static NSIndexPath* imp_indexPathWithIndexesLength(Class cls, const NSUInteger* indexes,
                                                       NSUInteger length);
    NSIndexPath* imp_initWithIndex(NSUInteger index);
    NSIndexPath* imp_initWithIndexesLength(const NSUInteger* indexes, NSUInteger length);
    NSInteger imp_section() const { return position(0); }
    NSInteger imp_row() const { return position(1); }
    NSUInteger imp_length() const { return indexes_.size(); }
    NSUInteger imp_indexAtPosition(NSUInteger position) const;
    NSIndexPath* imp_indexPathByAddingIndex(NSUInteger index) const;
    NSComparisonResult imp_compare(NSIndexPath* other) const;
    bool imp_isEqual(id other) const;
    NSUInteger imp_hash() const;
    NSString* imp_description() const;
    id imp_copyWithZone(void* zone);

    NSInteger position(std::size_t i) const;

    std::vector<NSUInteger> indexes_;
};
