#include "brush/BrushLibrary.h"

#include <algorithm>
#include <array>

namespace qirn {

namespace {

/// One setting in which a preset differs from the defaults.
struct Change {
    double BrushSettings::*number = nullptr;
    bool BrushSettings::*flag = nullptr;
    double value = 0;
};

/// A field that reads like a function in the table: `size(8)`, `spray(true)`.
struct Number {
    double BrushSettings::*field;
    constexpr Change operator()(double value) const { return {field, nullptr, value}; }
};
struct Flag {
    bool BrushSettings::*field;
    constexpr Change operator()(bool value) const { return {nullptr, field, value ? 1.0 : 0.0}; }
};

struct Preset {
    const char* name;
    const char* category;
    BrushKind kind;
    std::array<Change, 10> changes; // up to the first without a field
};

namespace table {

using enum BrushKind;
using B = BrushSettings;
constexpr Number size{&B::size}, opacity{&B::opacity}, flow{&B::flow}, hardness{&B::hardness},
    spacing{&B::spacing}, stabilizer{&B::stabilizer}, sizeJitter{&B::sizeJitter},
    opacityJitter{&B::opacityJitter}, scatter{&B::scatter}, texture{&B::texture},
    textureScale{&B::textureScale}, roundness{&B::roundness}, angle{&B::angle}, angleJitter{&B::angleJitter},
    minSize{&B::minSize}, airbrushRate{&B::airbrushRate}, sprayDensity{&B::sprayDensity},
    particleSize{&B::particleSize}, strength{&B::strength};
constexpr Flag pressureSize{&B::pressureSize}, pressureOpacity{&B::pressureOpacity},
    pressureFlow{&B::pressureFlow}, airbrush{&B::airbrush}, spray{&B::spray};

constexpr auto pens = "Pens", pencils = "Pencils", inks = "Inks", markers = "Markers",
               rounds = "Round Brushes", airbrushes = "Airbrush", textures = "Texture",
               smudgeBlur = "Smudge & Blur", erasers = "Erasers";

// clang-format off
constexpr Preset presets[] = {
    {"Studio Pen", pens, paint, {{size(8), hardness(1), spacing(0.06), stabilizer(20), minSize(0.15)}}},
    {"Fine Liner", pens, paint, {{size(4), hardness(1), spacing(0.05), pressureSize(false), stabilizer(15)}}},
    {"Ballpoint", pens, paint,
     {{size(3), hardness(0.95), spacing(0.05), pressureOpacity(true), minSize(0.6), texture(0.15)}}},
    {"Pencil HB", pencils, paint,
     {{size(4), hardness(0.8), spacing(0.08), pressureOpacity(true), minSize(0.7), texture(0.55),
       textureScale(0.6), opacity(0.9)}}},
    {"Pencil 6B", pencils, paint,
     {{size(9), hardness(0.6), spacing(0.07), pressureOpacity(true), minSize(0.5), texture(0.7),
       textureScale(0.8)}}},
    {"Sketch Pencil", pencils, paint,
     {{size(6), hardness(0.7), flow(0.6), opacity(0.7), pressureOpacity(true), texture(0.45),
       stabilizer(5)}}},
    {"Ink Brush", inks, paint, {{size(18), hardness(0.97), spacing(0.04), stabilizer(40), minSize(0.05)}}},
    {"Calligraphy Ink", inks, paint,
     {{size(22), hardness(1), spacing(0.03), roundness(0.25), angle(45), stabilizer(30), minSize(0.4)}}},
    {"Dry Ink", inks, paint, {{size(20), spacing(0.05), texture(0.6), textureScale(1.6), stabilizer(20)}}},
    {"Marker", markers, paint,
     {{size(24), hardness(0.85), opacity(0.7), pressureSize(false), spacing(0.05)}}},
    {"Chisel Marker", markers, paint,
     {{size(28), hardness(0.95), opacity(0.75), roundness(0.35), angle(-30), pressureSize(false),
       spacing(0.04)}}},
    {"Highlighter", markers, paint,
     {{size(34), opacity(0.4), roundness(0.4), pressureSize(false), spacing(0.04)}}},
    {"Hard Round", rounds, paint, {{size(30), hardness(0.95), spacing(0.08)}}},
    {"Soft Round", rounds, paint,
     {{size(60), hardness(0), flow(0.7), pressureOpacity(true), pressureSize(false)}}},
    {"Wet Wash", rounds, paint,
     {{size(80), hardness(0.1), opacity(0.45), flow(0.35), spacing(0.08), pressureFlow(true),
       pressureSize(false)}}},
    {"Airbrush Soft", airbrushes, paint,
     {{size(90), hardness(0), flow(0.08), airbrush(true), airbrushRate(30), pressureFlow(true),
       pressureSize(false)}}},
    {"Airbrush Fine", airbrushes, paint,
     {{size(24), hardness(0.2), flow(0.15), spacing(0.08), airbrush(true), airbrushRate(30),
       pressureFlow(true), pressureSize(false)}}},
    {"Spray Can", airbrushes, paint,
     {{size(110), hardness(0.5), flow(0.9), spacing(0.15), spray(true), sprayDensity(60), particleSize(2),
       airbrush(true), airbrushRate(25), pressureSize(false)}}},
    {"Fine Mist", airbrushes, paint,
     {{size(70), flow(0.5), spacing(0.2), spray(true), sprayDensity(120), particleSize(0.8), airbrush(true),
       airbrushRate(30), pressureSize(false)}}},
    {"Splatter", airbrushes, paint,
     {{size(140), spacing(0.6), spray(true), sprayDensity(14), particleSize(6), sizeJitter(0.5),
       pressureSize(false)}}},
    {"Charcoal", textures, paint,
     {{size(26), hardness(0.5), spacing(0.06), texture(0.85), textureScale(1.2), sizeJitter(0.15),
       scatter(0.05), pressureOpacity(true), minSize(0.6)}}},
    {"Chalk", textures, paint,
     {{size(34), hardness(0.6), spacing(0.07), texture(0.75), textureScale(2), angleJitter(0.3),
       roundness(0.7), pressureSize(false), pressureOpacity(true)}}},
    {"Dry Brush", textures, paint,
     {{size(40), hardness(0.8), spacing(0.05), texture(0.65), textureScale(3), opacityJitter(0.3),
       roundness(0.5), minSize(0.5)}}},
    {"Pastel Grain", textures, paint,
     {{size(30), hardness(0.4), spacing(0.08), flow(0.5), texture(0.9), textureScale(0.7), pressureFlow(true),
       pressureSize(false)}}},
    {"Smudge", smudgeBlur, smudge,
     {{size(40), hardness(0.4), spacing(0.08), strength(0.6), pressureSize(false)}}},
    {"Finger Blend", smudgeBlur, smudge,
     {{size(70), hardness(0), spacing(0.06), strength(0.85), pressureSize(false)}}},
    {"Blur", smudgeBlur, blur,
     {{size(50), hardness(0.2), spacing(0.15), strength(0.5), pressureSize(false)}}},
    {"Strong Blur", smudgeBlur, blur,
     {{size(90), hardness(0), spacing(0.12), strength(0.9), pressureSize(false)}}},
    {"Hard Eraser", erasers, erase, {{size(30), hardness(0.95), spacing(0.06), pressureSize(false)}}},
    {"Soft Eraser", erasers, erase,
     {{size(70), hardness(0), flow(0.6), pressureSize(false), pressureFlow(true)}}},
    {"Airbrush Eraser", erasers, erase,
     {{size(90), hardness(0), flow(0.08), airbrush(true), airbrushRate(30), pressureSize(false),
       pressureFlow(true)}}},
    {"Pencil Eraser", erasers, erase, {{size(8), hardness(0.8), texture(0.4), spacing(0.07), minSize(0.6)}}},
    {"Pixel Eraser", erasers, erase, {{size(1), hardness(1), spacing(0.2), pressureSize(false)}}},
};
// clang-format on

} // namespace table

BrushSettings brushOf(const Preset& preset) {
    BrushSettings brush(QString::fromUtf8(preset.name), QString::fromUtf8(preset.category), preset.kind);
    brush.isBuiltIn = true;
    for (const Change& change : preset.changes) {
        if (change.number) brush.*change.number = change.value;
        if (change.flag) brush.*change.flag = change.value != 0;
    }
    brush.sanitize();
    return brush;
}

} // namespace

const std::vector<BrushSettings>& BrushLibrary::builtIn() {
    static const std::vector<BrushSettings> list = [] {
        std::vector<BrushSettings> brushes;
        for (const Preset& preset : table::presets) brushes.push_back(brushOf(preset));
        return brushes;
    }();
    return list;
}

QStringList BrushLibrary::categories() {
    QStringList names;
    for (const BrushSettings& brush : builtIn()) {
        if (!names.contains(brush.category)) names.append(brush.category);
    }
    return names;
}

std::optional<BrushSettings> BrushLibrary::named(const QString& name) {
    const auto& list = builtIn();
    const auto found = std::find_if(list.begin(), list.end(), [&](const auto& b) { return b.name == name; });
    if (found == list.end()) return std::nullopt;
    return *found;
}

} // namespace qirn
