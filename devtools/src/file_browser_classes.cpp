#include "file_browser_classes.h"

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <array>

namespace tolbrenn::detail {

std::span<const objc::ClassFunction> fileBrowserClasses() {
    // Every view controller of the browser, so that preparing the browser
    // creates all of them (the browser pushes more of itself, nothing else).
    static constexpr std::array<objc::ClassFunction, 1> classes{
        &ParcelvaneFileBrowserViewController::objcClass,
    };
    return classes;
}

}  // namespace tolbrenn::detail
