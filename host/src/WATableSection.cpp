#include <Host/WATableSection.h>

#include <Foundation/NSArray.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WATableSection, NSObject, "WATableSection")
OBJC_REGISTER_CLASS(WATableSection)

void WATableSection::objcDefine(objc::ClassBuilder<WATableSection>& b) {
    using C = WATableSection;
    b.property<&C::header_>("headerText", objc::Copy | objc::Nonatomic)
        .property<&C::footer_>("footerText", objc::Copy | objc::Nonatomic)
        .method<&C::imp_rows>("rows")
        .method<&C::imp_addRow>("addRow:");
}

NSArray* WATableSection::imp_rows() const {
    std::vector<id> list(rows_.begin(), rows_.end());
    return objc::autorelease(NSArray::create(std::move(list)).leak());
}

void WATableSection::imp_addRow(WATableRow* row) {
    if (row != nullptr) rows_.push_back(objc::retained(row));
}
