// Fonts as Pango sees them, and the one Pango font map of the process.
//
// Pango objects are not thread-safe, so every use of the shared font map,
// its contexts and the measuring layout happens under TextEngine's lock.
#pragma once

#include <pango/pangocairo.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace uikit {

template <class T, void (*Free)(T*)>
struct Freer {
    void operator()(T* p) const noexcept { Free(p); }
};
template <class T>
using GObjectPtr = std::unique_ptr<T, Freer<void, g_object_unref>>;
using FontDescriptionPtr =
    std::unique_ptr<PangoFontDescription, Freer<PangoFontDescription, pango_font_description_free>>;

// A face at a size, with its metrics in points.
class FontFace {
  public:
    const PangoFontDescription* description() const noexcept { return description_.get(); }
    double size() const noexcept { return size_; }
    double ascent() const noexcept { return ascent_; }
    double descent() const noexcept { return descent_; }
    const std::string& family() const noexcept { return family_; }
    // The system family: Arabic letters are set in Noto Sans Arabic.
    bool arabicFallback() const noexcept { return arabicFallback_; }

  private:
    friend class TextEngine;
    FontDescriptionPtr description_;
    double size_ = 0, ascent_ = 0, descent_ = 0;
    std::string family_;
    bool arabicFallback_ = false;
};

class TextEngine {
  public:
    static TextEngine& shared();

    std::unique_lock<std::mutex> lock() { return std::unique_lock(mutex_); }

    // Under the lock: a context at one point per unit and its reusable layout,
    // and a context for drawing (its matrix follows the cairo context).
    PangoContext* measuringContext() const noexcept { return measuring_.get(); }
    PangoLayout* measuringLayout() const noexcept { return layout_.get(); }
    PangoContext* drawingContext() const noexcept { return drawing_.get(); }

    // Shared faces; each takes the lock itself.
    std::shared_ptr<const FontFace> systemFace(double size, bool bold);
    // Null when no installed font has that family, full or PostScript name.
    std::shared_ptr<const FontFace> namedFace(const std::string& name, double size);
    std::shared_ptr<const FontFace> resized(const FontFace& face, double size);

    TextEngine();
    ~TextEngine();
    TextEngine(const TextEngine&) = delete;
    TextEngine& operator=(const TextEngine&) = delete;

  private:
    struct Names;
    std::shared_ptr<const FontFace> faceLocked(const PangoFontDescription* base, double size,
                                               bool arabicFallback);

    std::mutex mutex_;
    GObjectPtr<PangoFontMap> fontMap_;
    GObjectPtr<PangoContext> measuring_;
    GObjectPtr<PangoLayout> layout_;
    GObjectPtr<PangoContext> drawing_;
    std::unique_ptr<Names> names_;
    // Faces are few (a handful of names at a handful of sizes) and live for
    // the process, so measuring again never asks fontconfig.
    std::map<std::string, std::shared_ptr<const FontFace>> faces_;
};

// The size a font asks for, as the platform takes a size of 0 or less.
double usableFontSize(double size);

}  // namespace uikit
