#include <Foundation/NSIndexPath.h>

#include <objc/image.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

using objc::msgSend;
using objc::sel;

NSIndexPath* autoreleasedPath(Class cls, const NSUInteger* indexes, NSUInteger length) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithIndexes:length:">(), indexes, length);
    return static_cast<NSIndexPath*>(objc_autorelease(obj));
}

}  // namespace

OBJC_DEFINE_CLASS(NSIndexPath, NSObject, "NSIndexPath")
OBJC_REGISTER_CLASS(NSIndexPath)

void NSIndexPath::objcDefine(objc::ClassBuilder<NSIndexPath>& b) {
    b.classMethod<&NSIndexPath::imp_indexPathForRowInSection>("indexPathForRow:inSection:")
        .classMethod<&NSIndexPath::imp_indexPathForRowInSection>("indexPathForItem:inSection:")
        .classMethod<&NSIndexPath::imp_indexPathWithIndex>("indexPathWithIndex:")
        .classMethod<&NSIndexPath::imp_indexPathWithIndexesLength>("indexPathWithIndexes:length:")
        .method<&NSIndexPath::imp_initWithIndex>("initWithIndex:")
        .method<&NSIndexPath::imp_initWithIndexesLength>("initWithIndexes:length:")
        .method<&NSIndexPath::imp_section>("section")
        .method<&NSIndexPath::imp_row>("row")
        .method<&NSIndexPath::imp_row>("item")
        .method<&NSIndexPath::imp_length>("length")
        .method<&NSIndexPath::imp_indexAtPosition>("indexAtPosition:")
        .method<&NSIndexPath::imp_indexPathByAddingIndex>("indexPathByAddingIndex:")
        .method<&NSIndexPath::imp_compare>("compare:")
        .method<&NSIndexPath::imp_isEqual>("isEqual:")
        .method<&NSIndexPath::imp_hash>("hash")
        .method<&NSIndexPath::imp_description>("description")
        .method<&NSIndexPath::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSIndexPath> NSIndexPath::create(std::vector<NSUInteger> indexes) {
    id obj = msgSend<id>(msgSend<id>(objcClass(), sel<"alloc">()), sel<"init">());
    auto path = objc::adopt(static_cast<NSIndexPath*>(obj));
    path->indexes_ = std::move(indexes);
    return path;
}

NSIndexPath* NSIndexPath::imp_indexPathForRowInSection(Class cls, NSInteger row,
                                                       NSInteger section) {
    const NSUInteger indexes[] = {static_cast<NSUInteger>(section), static_cast<NSUInteger>(row)};
    return autoreleasedPath(cls, indexes, 2);
}

NSIndexPath* NSIndexPath::imp_indexPathWithIndex(Class cls, NSUInteger index) {
    return autoreleasedPath(cls, &index, 1);
}

NSIndexPath* NSIndexPath::imp_indexPathWithIndexesLength(Class cls, const NSUInteger* indexes,
                                                         NSUInteger length) {
    return autoreleasedPath(cls, indexes, length);
}

NSIndexPath* NSIndexPath::imp_initWithIndex(NSUInteger index) {
    indexes_.assign(1, index);
    return this;
}

NSIndexPath* NSIndexPath::imp_initWithIndexesLength(const NSUInteger* indexes, NSUInteger length) {
    if (indexes == nullptr && length > 0) {
        objc_release(this);  // a failed init frees the object
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSIndexPath initWithIndexes:length:]: indexes is NULL");
    }
    indexes_.assign(indexes, indexes + length);
    return this;
}

NSInteger NSIndexPath::position(std::size_t i) const {
    return i < indexes_.size() ? static_cast<NSInteger>(indexes_[i]) : NSNotFound;
}

NSUInteger NSIndexPath::imp_indexAtPosition(NSUInteger position) const {
    return position < indexes_.size() ? indexes_[position] : static_cast<NSUInteger>(NSNotFound);
}

NSIndexPath* NSIndexPath::imp_indexPathByAddingIndex(NSUInteger index) const {
    std::vector<NSUInteger> longer = indexes_;
    longer.push_back(index);
    return autoreleasedPath(object_getClass(const_cast<NSIndexPath*>(this)), longer.data(),
                            longer.size());
}

NSComparisonResult NSIndexPath::imp_compare(NSIndexPath* other) const {
    if (other == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSIndexPath compare:]: nil argument");
    }
    const auto order = std::lexicographical_compare_three_way(
        indexes_.begin(), indexes_.end(), other->indexes_.begin(), other->indexes_.end());
    if (order < 0) return NSOrderedAscending;
    if (order > 0) return NSOrderedDescending;
    return NSOrderedSame;
}

bool NSIndexPath::imp_isEqual(id other) const {
    if (other == this) return true;
    auto* path = objc::cast<NSIndexPath>(other);
    return path != nullptr && path->indexes_ == indexes_;
}

NSUInteger NSIndexPath::imp_hash() const {
    NSUInteger h = indexes_.size();
    for (const NSUInteger i : indexes_) h = h * 1000003u ^ i;
    return h;
}

NSString* NSIndexPath::imp_description() const {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
    std::string text = std::string("<") + object_getClassName(const_cast<NSIndexPath*>(this)) +
                       ": " + address + "> {length = " + std::to_string(indexes_.size()) +
                       ", path = ";
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (i > 0) text += " - ";
        text += std::to_string(indexes_[i]);
    }
    text += "}";
    return objc::autorelease(NSString::create(text).leak());
}

// Immutable: the path is its own copy.
id NSIndexPath::imp_copyWithZone(void*) {
    return objc_retain(this);
}
