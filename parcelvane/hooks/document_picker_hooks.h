// The chat screen's document menu: the system menu's initialiser, the share
// action, the picking of a provider and of a document, and the added
// presentation method. Each takes the receiver and the selector first, then
// the host method's own arguments.
#pragma once

#include <objc/types.h>

class NSArray;
class NSURL;

namespace parcelvane::hooks {

// -[UIDocumentMenuViewController initWithDocumentTypes:inMode:]
// (the mode is a UIDocumentPickerMode).
id initWithDocumentTypesInMode(id self, SEL sel, NSArray* types, NSUInteger mode);

// -[WAChatSessionViewController presentShareDocumentController]
void presentShareDocumentController(id self, SEL sel);

// -[WAChatSessionViewController documentPicker:didPickDocumentAtURL:]
void documentPickerDidPickDocumentAtURL(id self, SEL sel, id picker, NSURL* url);

// -[WAChatSessionViewController documentMenu:didPickDocumentPicker:]
void documentMenuDidPickDocumentPicker(id self, SEL sel, id menu, id picker);

// Added: -[WAChatSessionViewController _presentForCurrentInterface:], "v@:@".
void presentForCurrentInterface(id self, SEL sel, id viewController);

}  // namespace parcelvane::hooks
