#include "hooks/document_picker_hooks.h"

#include "hooks/hook_slots.h"

#include <objc/message.h>

namespace parcelvane::hooks {

id initWithDocumentTypesInMode(id self, SEL sel, NSArray* types, NSUInteger mode) {
    return objc::callImp<id>(original::initWithDocumentTypesInMode, self, sel, types, mode);
}

void presentShareDocumentController(id self, SEL sel) {
    objc::callImp<void>(original::presentShareDocumentController, self, sel);
}

void documentPickerDidPickDocumentAtURL(id self, SEL sel, id picker, NSURL* url) {
    objc::callImp<void>(original::documentPickerDidPickDocumentAtURL, self, sel, picker, url);
}

void documentMenuDidPickDocumentPicker(id self, SEL sel, id menu, id picker) {
    objc::callImp<void>(original::documentMenuDidPickDocumentPicker, self, sel, menu, picker);
}

void presentForCurrentInterface(id, SEL, id) {}

}  // namespace parcelvane::hooks
