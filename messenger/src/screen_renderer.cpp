#include "screen_renderer.h"

#include "terminal_text.h"

#include <objc/runtime.h>

namespace messenger {

void ScreenRenderers::add(std::string className, Renderer renderer) {
    renderers_[std::move(className)] = std::move(renderer);
}

std::optional<ScreenText> ScreenRenderers::render(id object) const {
    if (object == nullptr) return std::nullopt;
    for (Class cls = object_getClass(object); cls != nullptr; cls = class_getSuperclass(cls)) {
        const auto it = renderers_.find(class_getName(cls));
        if (it == renderers_.end()) continue;
        ScreenText text;
        it->second(object, text);
        return text;
    }
    return std::nullopt;
}

std::string formatScreen(const ScreenText& text) {
    // Titles and lines carry names (files, chats, messages) as they are.
    std::string out = "== " + printable(text.title) + " ==\n";
    for (const std::string& line : text.lines) out += "  " + printable(line) + "\n";
    return out;
}

}  // namespace messenger
