// Screens as text. Each kind of object on screen (a controller class, an
// alert, a sheet) has a renderer that writes its title and lines; the most
// specific renderer along the object's class chain is used, so libraries'
// subclasses of host screens show as their host screen until a renderer of
// their own is registered.
#pragma once

#include <objc/types.h>

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace messenger {

struct ScreenText {
    std::string title;
    std::vector<std::string> lines;
};

class ScreenRenderers {
  public:
    using Renderer = std::function<void(id object, ScreenText& text)>;

    // Replaces any renderer registered for the class name.
    void add(std::string className, Renderer renderer);
    // The text of the object through the nearest registered class, or
    // nothing when no class of its chain has a renderer.
    std::optional<ScreenText> render(id object) const;

  private:
    std::unordered_map<std::string, Renderer> renderers_;
};

// The renderers of the platform's and the host's screens.
ScreenRenderers standardRenderers();
// The chat and what it presents (menus, pickers, the file browser).
void addChatRenderers(ScreenRenderers& renderers);

// "== Title ==" and the lines, indented, each ending in a newline; control
// characters in them are shown escaped (printable()).
std::string formatScreen(const ScreenText& text);

}  // namespace messenger
