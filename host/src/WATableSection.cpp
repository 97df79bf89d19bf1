#include <Host/WATableSection.h>

#include <Foundation/NSArray.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WATableSection, NSObject, "WATableSection")
OBJC_REGISTER_CLASS(WATableSection)

void WATableSection::objcDefine(objc::ClassBuilder<WATableSection>& b) {
    using C = WATableSection;
    b.method<&C::imp_headerText>("headerText")
        .method<&C::imp_setHeaderText>("setHeaderText:")
        .method<&C::imp_footerText>("footerText")
        .method<&C::imp_setFooterText>("setFooterText:")
        .method<&C::imp_rows>("rows")
        .method<&C::imp_addRow>("addRow:");
}

namespace {
objc::Strong<NSString> copied(NSString* text) {
    return text != nullptr ? objc::adopt(static_cast<NSString*>(text->copy())) : nullptr;
}
}  // namespace

void WATableSection::imp_setHeaderText(NSString* text) {
    header_ = copied(text);
}

void WATableSection::imp_setFooterText(NSString* text) {
    footer_ = copied(text);
}

NSArray* WATableSection::imp_rows() const {
    std::vector<id> list(rows_.begin(), rows_.end());
    return objc::autorelease(NSArray::create(std::move(list)).leak());
}

void WATableSection::imp_addRow(WATableRow* row) {
    if (row != nullptr) rows_.push_back(objc::retained(row));
}
