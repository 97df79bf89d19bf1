// A picture of the Settings screen as the messenger's screenshot takes it:
// the window's views drawn into an opaque context at iPhone 6 size and scale.
#include <Host/WASettingsViewController.h>

#include <Foundation/NSData.h>
#include <Foundation/NSRunLoop.h>

#include <UIKit/UIKit.h>

#include <objc/strong.h>

#include <benchmark/benchmark.h>

#include "ratios.h"

namespace {

// The Settings screen pushed on a navigation stack in the key window.
struct SettingsOnScreen {
    SettingsOnScreen() {
        uikit::configureDevice(uikit::DeviceProfile::defaultProfile());
        window = UIWindow::create();
        navigation = UINavigationController::create(UIViewController::create().get());
        window->setRootViewController(navigation.get());
        window->makeKeyAndVisible();
        navigation->pushViewController(WASettingsViewController::create().get(), false);
        foundation::runMainLoopUntilIdle();
    }
    ~SettingsOnScreen() {
        window->setRootViewController(nullptr);
        foundation::runMainLoopUntilIdle();
    }
    objc::Strong<UIWindow> window;
    objc::Strong<UINavigationController> navigation;
};

UIImage* picture(UIWindow* window) {
    UIScreen* screen = UIScreen::mainScreen();
    const CGRect bounds = screen->bounds();
    UIGraphicsBeginImageContextWithOptions(bounds.size, true, screen->scale());
    window->drawViewHierarchyInRect(bounds, true);
    UIImage* image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image;
}

void BM_SettingsScreenshot(benchmark::State& state) {
    objc::AutoreleasePool outer;
    SettingsOnScreen scene;
    for (auto _ : state) {
        objc::AutoreleasePool pool;
        UIImage* image = picture(scene.window.get());
        benchmark::DoNotOptimize(image);
        if (image == nullptr || image->pixelWidth() != 750) state.SkipWithError("no picture");
    }
}
BENCHMARK(BM_SettingsScreenshot)->Unit(benchmark::kMillisecond);

// The same picture written as PNG bytes, as `screenshot FILE` does.
void BM_SettingsScreenshotPng(benchmark::State& state) {
    objc::AutoreleasePool outer;
    SettingsOnScreen scene;
    for (auto _ : state) {
        objc::AutoreleasePool pool;
        NSData* png = UIImagePNGRepresentation(picture(scene.window.get()));
        benchmark::DoNotOptimize(png);
    }
}
BENCHMARK(BM_SettingsScreenshotPng)->Unit(benchmark::kMillisecond);

}  // namespace

// The whole of `screenshot`: the picture and its PNG bytes.
BENCH_BOUND("a screenshot of the Settings screen at iPhone 6 scale, as PNG",
            "BM_SettingsScreenshotPng", 30e6);
