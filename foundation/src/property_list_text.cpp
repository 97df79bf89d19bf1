#include "property_list_text.h"

#include <objc/string.h>

#include <cstdio>

namespace foundation::detail {
namespace {

bool isBareWordUnit(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c == u'$' || c == u'+' || c == u'/' || c == u':' || c == u'.' || c == u'-';
}

void appendAscii(std::u16string& out, const char* text) {
    for (; *text != '\0'; ++text) out.push_back(static_cast<char16_t>(*text));
}

}  // namespace

void appendIndent(std::u16string& out, NSUInteger level) {
    out.append(static_cast<std::size_t>(level) * 4, u' ');
}

void appendQuotedIfNeeded(std::u16string& out, const std::u16string& text) {
    bool bare = !text.empty();
    for (const char16_t c : text) {
        if (!isBareWordUnit(c)) {
            bare = false;
            break;
        }
    }
    if (bare) {
        out += text;
        return;
    }
    out.push_back(u'"');
    for (const char16_t c : text) {
        switch (c) {
            case u'"':
                appendAscii(out, "\\\"");
                break;
            case u'\\':
                appendAscii(out, "\\\\");
                break;
            case u'\n':
                appendAscii(out, "\\n");
                break;
            case u'\t':
                appendAscii(out, "\\t");
                break;
            case u'\r':
                appendAscii(out, "\\r");
                break;
            default:
                if (c < 0x20) {
                    char buffer[8];
                    std::snprintf(buffer, sizeof buffer, "\\%03o", static_cast<unsigned>(c));
                    appendAscii(out, buffer);
                } else if (c > 0x7E) {
                    char buffer[8];
                    std::snprintf(buffer, sizeof buffer, "\\U%04x", static_cast<unsigned>(c));
                    appendAscii(out, buffer);
                } else {
                    out.push_back(c);
                }
        }
    }
    out.push_back(u'"');
}

void appendElementDescription(std::u16string& out, id element, id locale, NSUInteger level) {
    const SEL nested = objc::sel<"descriptionWithLocale:indent:">();
    if (class_respondsToSelector(object_getClass(element), nested)) {
        auto* text = objc::msgSend<NSString*>(element, nested, locale, level);
        if (text != nullptr) out += text->units();
        return;
    }
    auto* text = objc::msgSend<NSString*>(element, objc::sel<"description">());
    appendQuotedIfNeeded(out, text != nullptr ? text->units() : std::u16string(u"(null)"));
}

NSString* autoreleasedString(std::u16string text) {
    return objc::autorelease(NSString::create(std::move(text)).leak());
}

}  // namespace foundation::detail
