#include <Host/WATableRow.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WATableRow, NSObject, "WATableRow")
OBJC_REGISTER_CLASS(WATableRow)

void WATableRow::objcDefine(objc::ClassBuilder<WATableRow>& b) {
    using C = WATableRow;
    b.method<&C::imp_handler>("handler")
        .method<&C::imp_setHandler>("setHandler:")
        .method<&C::imp_cell>("cell")
        .method<&C::imp_setCell>("setCell:")
        .method<&C::imp_title>("title")
        .method<&C::imp_setTitle>("setTitle:")
        .method<&C::imp_detailText>("detailText")
        .method<&C::imp_setDetailText>("setDetailText:");
}

void WATableRow::imp_setHandler(Handler* handler) {
    handler_ = handler != nullptr ? objc::adopt(static_cast<Handler*>(handler->copy())) : nullptr;
}

void WATableRow::imp_setTitle(NSString* title) {
    title_ = title != nullptr ? objc::adopt(static_cast<NSString*>(title->copy())) : nullptr;
}

void WATableRow::imp_setDetailText(NSString* text) {
    detail_ = text != nullptr ? objc::adopt(static_cast<NSString*>(text->copy())) : nullptr;
}
