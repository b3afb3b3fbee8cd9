#include "shell/panels/brush/BrushSettingRows.h"

#include <QCoreApplication>

#include "shell/BrushValue.h"

namespace qirn::BrushSettingRows {

namespace {

using B = BrushSettings;
using Section = Row::Section;
using Picker = Row::Picker;
using Format = NumberFormat;

template <BrushKind... kKinds> bool isOf(const PaintModel& model) {
    return ((model.brushes().activeBrush().kind == kKinds) || ...);
}
/// While one of these is on.
template <bool B::*... kFlags> bool has(const PaintModel& model) {
    return ((model.brushes().activeBrush().*kFlags) || ...);
}

QStringList kinds(const PaintModel&) {
    QStringList names;
    for (const BrushKindRow& row : kBrushKinds)
        names << QCoreApplication::translate("BrushKind", row.displayName);
    return names;
}
int kindOf(const PaintModel& model) {
    return static_cast<int>(model.brushes().activeBrush().kind);
}
void setKind(PaintModel& model, int kind) {
    BrushValue::set<&B::kind>(model, static_cast<BrushKind>(kind));
}

template <double B::*kField>
constexpr Row::Slider slider(const char* label, const SliderScale& scale, const Format& format,
                             const char* tip = nullptr) {
    return {label, scale, format, tip, BrushValue::get<kField>, BrushValue::set<kField>};
}
template <bool B::*kField> constexpr Row::Toggle toggle(const char* label, const char* tip = nullptr) {
    return {label, tip, BrushValue::get<kField>, BrushValue::set<kField>};
}

constexpr bool (*always)(const PaintModel&) = nullptr;
constexpr bool (*paints)(const PaintModel&) = isOf<BrushKind::paint, BrushKind::erase>;
constexpr bool (*moves)(const PaintModel&) = isOf<BrushKind::smudge, BrushKind::blur>;
constexpr SliderScale kPart{0, 1, 0.01}; // of a whole

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::BrushPanel", text)

constexpr Row kRows[] = {
    {always, Section{TEXT("Settings")}},
    {always,
     Picker{TEXT("Type"), kinds, TEXT("What the brush does: paint, erase, smudge or blur"), kindOf, setKind}},
    {always, slider<&B::size>(TEXT("Size"), {1, 400, 1, true}, Format::pixels(), TEXT("Diameter in pixels"))},
    {paints, slider<&B::opacity>(TEXT("Opacity"), kPart, Format::percent(),
                                 TEXT("The most paint one stroke can lay down"))},
    {paints, slider<&B::flow>(TEXT("Flow"), {0.01, 1, 0.01}, Format::percent(),
                              TEXT("How fast paint builds up while you go over the same spot"))},
    {moves, slider<&B::strength>(TEXT("Strength"), kPart, Format::percent())},
    {always, slider<&B::hardness>(TEXT("Hardness"), kPart, Format::percent(),
                                  TEXT("Crisp edge (100%) or soft, fuzzy edge (0%)"))},
    {always,
     slider<&B::spacing>(TEXT("Spacing"), {0.02, 2, 0.01, true}, Format::percent(),
                         TEXT("Gap between dabs (% of the size). Small = smooth line, large = dotted"))},
    {always,
     slider<&B::stabilizer>(TEXT("Stabilizer"), {0, 100, 1}, Format::plain(),
                            TEXT("Smooths shaky hands. Higher = smoother but trails behind the pen"))},

    {always, Section{TEXT("Pen pressure")}},
    {always, toggle<&B::pressureSize>(TEXT("Pressure → size"))},
    {has<&B::pressureSize>, slider<&B::minSize>(TEXT("Lightest size"), kPart, Format::percent(),
                                                TEXT("Size at the lightest touch"))},
    {always, toggle<&B::pressureOpacity>(TEXT("Pressure → opacity"))},
    {always, toggle<&B::pressureFlow>(TEXT("Pressure → flow"))},

    {always, Section{TEXT("Shape & texture")}},
    {always, slider<&B::roundness>(TEXT("Roundness"), {0.05, 1, 0.01}, Format::percent(),
                                   TEXT("100% round; lower = flat calligraphy tip"))},
    {always, slider<&B::angle>(TEXT("Angle"), {-180, 180, 1}, Format::degrees())},
    {always, slider<&B::texture>(TEXT("Texture"), kPart, Format::percent(),
                                 TEXT("Paper grain (charcoal, chalk, pencil)"))},
    {always, slider<&B::textureScale>(TEXT("Grain scale"), {0.25, 4, 0.05}, Format::times())},

    {always, Section{TEXT("Jitter")}},
    {always, slider<&B::sizeJitter>(TEXT("Size jitter"), kPart, Format::percent())},
    {always, slider<&B::opacityJitter>(TEXT("Opacity jitter"), kPart, Format::percent())},
    {always, slider<&B::scatter>(TEXT("Scatter"), {0, 2, 0.01}, Format::percent(),
                                 TEXT("Throws dabs sideways from the line"))},
    {always, slider<&B::angleJitter>(TEXT("Angle jitter"), kPart, Format::percent())},

    {always, Section{TEXT("Airbrush & spray")}},
    {always,
     toggle<&B::airbrush>(TEXT("Airbrush build-up"), TEXT("Keeps spraying while the pen is held still"))},
    {has<&B::airbrush, &B::spray>,
     slider<&B::airbrushRate>(TEXT("Spray rate"), {1, 120, 1}, Format::perSecond(),
                              TEXT("Dabs per second while held still"))},
    {always, toggle<&B::spray>(TEXT("Spray droplets"),
                               TEXT("Many small droplets instead of a solid dab (spray can)"))},
    {has<&B::spray>,
     slider<&B::sprayDensity>(TEXT("Density"), {1, 400, 1, true}, Format::plain(),
                              TEXT("Droplets per dab at full pressure — press harder to spray more"))},
    {has<&B::spray>, slider<&B::particleSize>(TEXT("Droplet size"), {0.5, 20, 0.1, true}, Format::plain(1))},
};

#undef TEXT

} // namespace

std::span<const Row> all() {
    return kRows;
}

} // namespace qirn::BrushSettingRows
