// Pictures of the screen: what is in front, drawn by the views themselves at
// the device's size and scale, written as PNG.
#pragma once

#include "app.h"

#include <UIKit/UIImage.h>

#include <string>

namespace messenger {

// The screen as the user sees it: the window, and over it the alert, the
// action sheet or the popover in front. Autoreleased.
UIImage* pictureOfScreen(App& app);
// Writes the picture to `path` (atomically); answers why not, or "".
std::string writeScreenshot(App& app, const std::string& path);

}  // namespace messenger
