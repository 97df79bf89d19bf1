#include "font_face.h"

#include <fontconfig/fontconfig.h>

#include <cmath>
#include <unordered_map>

namespace uikit {

namespace {

constexpr const char* kSystemFamily = "DejaVu Sans";

struct FontName {
    std::string family;
    PangoWeight weight = PANGO_WEIGHT_NORMAL;
    PangoStyle style = PANGO_STYLE_NORMAL;
};

PangoStyle styleOf(int slant) {
    if (slant == FC_SLANT_ITALIC) return PANGO_STYLE_ITALIC;
    if (slant == FC_SLANT_OBLIQUE) return PANGO_STYLE_OBLIQUE;
    return PANGO_STYLE_NORMAL;
}

cairo_font_options_t* layoutFontOptions() {
    // No hinting of metrics: sizes scale with the drawing scale, so a text
    // measured in points draws in the same box at 2x or 3x.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    return options;
}

GObjectPtr<PangoContext> makeContext(PangoFontMap* map) {
    GObjectPtr<PangoContext> context(pango_font_map_create_context(map));
    cairo_font_options_t* options = layoutFontOptions();
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    return context;
}

}  // namespace

// Every installed face by its family, full and PostScript names; a family
// name stands for its regular face.
struct TextEngine::Names {
    std::unordered_map<std::string, FontName> byName;

    Names() {
        FcPattern* pattern = FcPatternCreate();
        FcObjectSet* objects = FcObjectSetBuild(FC_FAMILY, FC_FULLNAME, FC_POSTSCRIPT_NAME,
                                                FC_WEIGHT, FC_SLANT, nullptr);
        FcFontSet* fonts = FcFontList(nullptr, pattern, objects);
        FcObjectSetDestroy(objects);
        FcPatternDestroy(pattern);
        if (fonts == nullptr) return;
        for (int i = 0; i < fonts->nfont; ++i) {
            const FcPattern* font = fonts->fonts[i];
            FcChar8* family = nullptr;
            if (FcPatternGetString(font, FC_FAMILY, 0, &family) != FcResultMatch) continue;
            FontName face{reinterpret_cast<const char*>(family)};
            int weight = FC_WEIGHT_REGULAR;
            int slant = FC_SLANT_ROMAN;
            FcPatternGetInteger(font, FC_WEIGHT, 0, &weight);
            FcPatternGetInteger(font, FC_SLANT, 0, &slant);
            face.weight = static_cast<PangoWeight>(FcWeightToOpenType(weight));
            face.style = styleOf(slant);
            for (int k = 0; FcPatternGetString(font, FC_FAMILY, k, &family) == FcResultMatch; ++k) {
                byName.emplace(reinterpret_cast<const char*>(family),
                               FontName{reinterpret_cast<const char*>(family)});
            }
            FcChar8* name = nullptr;
            for (int k = 0; FcPatternGetString(font, FC_FULLNAME, k, &name) == FcResultMatch; ++k) {
                byName.emplace(reinterpret_cast<const char*>(name), face);
            }
            if (FcPatternGetString(font, FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch) {
                byName.emplace(reinterpret_cast<const char*>(name), face);
            }
        }
        FcFontSetDestroy(fonts);
    }
};

double usableFontSize(double size) {
    return std::isfinite(size) && size > 0 ? size : 12.0;
}

TextEngine& TextEngine::shared() {
    static TextEngine engine;
    return engine;
}

TextEngine::TextEngine()
    : fontMap_(pango_cairo_font_map_new()),
      measuring_(makeContext(fontMap_.get())),
      layout_(pango_layout_new(measuring_.get())),
      drawing_(makeContext(fontMap_.get())) {}

TextEngine::~TextEngine() = default;

std::shared_ptr<const FontFace> TextEngine::systemFace(double size, bool bold) {
    FontDescriptionPtr base(pango_font_description_new());
    pango_font_description_set_family_static(base.get(), kSystemFamily);
    pango_font_description_set_weight(base.get(), bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    const auto held = lock();
    return faceLocked(base.get(), size, true);
}

std::shared_ptr<const FontFace> TextEngine::namedFace(const std::string& name, double size) {
    const auto held = lock();
    if (!names_) names_ = std::make_unique<Names>();
    const auto it = names_->byName.find(name);
    if (it == names_->byName.end()) return nullptr;
    FontDescriptionPtr base(pango_font_description_new());
    pango_font_description_set_family(base.get(), it->second.family.c_str());
    pango_font_description_set_weight(base.get(), it->second.weight);
    pango_font_description_set_style(base.get(), it->second.style);
    return faceLocked(base.get(), size, it->second.family == kSystemFamily);
}

std::shared_ptr<const FontFace> TextEngine::resized(const FontFace& face, double size) {
    const auto held = lock();
    return faceLocked(face.description(), size, face.arabicFallback());
}

std::shared_ptr<const FontFace> TextEngine::faceLocked(const PangoFontDescription* base,
                                                       double size, bool arabicFallback) {
    size = usableFontSize(size);
    FontDescriptionPtr description(pango_font_description_copy(base));
    // Absolute: one Pango device unit is one point, whatever the resolution.
    pango_font_description_set_absolute_size(description.get(), size * PANGO_SCALE);
    char* text = pango_font_description_to_string(description.get());
    std::string key(text);
    g_free(text);
    auto& slot = faces_[key];
    if (slot) return slot;

    auto face = std::make_shared<FontFace>();
    PangoFontMetrics* metrics =
        pango_context_get_metrics(measuring_.get(), description.get(), nullptr);
    face->ascent_ = pango_font_metrics_get_ascent(metrics) / double(PANGO_SCALE);
    face->descent_ = pango_font_metrics_get_descent(metrics) / double(PANGO_SCALE);
    pango_font_metrics_unref(metrics);
    face->size_ = size;
    face->family_ = pango_font_description_get_family(description.get());
    face->arabicFallback_ = arabicFallback;
    face->description_ = std::move(description);
    slot = std::move(face);
    return slot;
}

}  // namespace uikit
