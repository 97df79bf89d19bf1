// The numbered entries of what is in front (an alert's buttons, an action
// sheet's entries, a document menu's options and providers, a document
// picker's or file browser's folder entries) with what choosing each does.
// The screens list them in this order and `choose` acts on them, so a number
// on screen is the number a user types.
#pragma once

#include <objc/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace messenger {

struct Choice {
    std::string title;     // what `choose "TITLE"` matches
    std::string label;     // how the screen lists it (the title with decorations)
    std::string detail;    // after the label: sizes, types; may be empty
    bool numbered = true;  // a sheet's cancel button is listed, not numbered
    // Acts as the user's tap; answers an error text, empty on success.
    std::function<std::string()> choose;
};

// The choices `object` offers, or nothing when it is no kind of list.
std::optional<std::vector<Choice>> choicesOf(id object);

// What `choose ARGUMENT` means: digits are a number (from 1) among the
// numbered choices; "TITLE" in double quotes, or any other text, is an exact
// title (or label). Null when nothing matches.
const Choice* findChoice(const std::vector<Choice>& choices, const std::string& argument);

// The screen lines of the choices: "N. label detail", an unnumbered one
// indented in its place.
std::vector<std::string> choiceLines(const std::vector<Choice>& choices);

// The text between surrounding double quotes, else the text itself.
std::string unquoted(const std::string& text);

}  // namespace messenger
