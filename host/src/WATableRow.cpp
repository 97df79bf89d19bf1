#include <Host/WATableRow.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WATableRow, NSObject, "WATableRow")
OBJC_REGISTER_CLASS(WATableRow)

void WATableRow::objcDefine(objc::ClassBuilder<WATableRow>& b) {
    using C = WATableRow;
    b.property<&C::handler_>("handler", objc::Copy | objc::Nonatomic)
        .property<&C::cell_>("cell", objc::Nonatomic)
        .property<&C::title_>("title", objc::Copy | objc::Nonatomic)
        .property<&C::detail_>("detailText", objc::Copy | objc::Nonatomic);
}
