#pragma once
#include "platform/RowOrder.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include <QString>
#include <QUuid>
#include <nlohmann/json_fwd.hpp>

namespace qirn {

/// What a dab does to the layer.
enum class BrushKind : uint8_t { paint, erase, smudge, blur };

struct BrushKindRow {
    BrushKind kind;
    const char* id;          ///< As files store it.
    const char* displayName; ///< English source text.
};
inline constexpr std::array kBrushKinds{
    BrushKindRow{BrushKind::paint, "paint", "Paint"},
    BrushKindRow{BrushKind::erase, "erase", "Erase"},
    BrushKindRow{BrushKind::smudge, "smudge", "Smudge"},
    BrushKindRow{BrushKind::blur, "blur", "Blur"},
};
static_assert(isInOrder(kBrushKinds, &BrushKindRow::kind));
constexpr const BrushKindRow& rowOf(BrushKind kind) {
    return kBrushKinds[static_cast<std::size_t>(kind)];
}
std::optional<BrushKind> brushKindWithId(std::string_view id);

/// A brush: preset, live setting of a tool and record of a file in one plain value. What comes from outside passes
/// through `sanitize` (or is decoded, which ends in it), so that strokes never test a range.
struct BrushSettings {
    QUuid id; ///< Identity of the preset.
    QString name;
    QString category; ///< Group in the brush panel.
    BrushKind kind;
    double size = 20;         ///< Diameter of a dab, pixels.
    double opacity = 1;       ///< Ceiling: the most that one stroke lays on a pixel.
    double flow = 1;          ///< Part of the remaining way to the ceiling that one dab covers.
    double hardness = 0.9;    ///< Part of the radius that stays at full coverage.
    double spacing = 0.1;     ///< From dab to dab, as a fraction of the current size.
    double stabilizer = 0;    ///< Line smoothing, 0 (off) to 100.
    double sizeJitter = 0;    ///< Random change of the size of a dab, fraction of the size.
    double opacityJitter = 0; ///< Random lowering of a dab's ceiling.
    double scatter = 0;       ///< Random offset of a dab on each axis, in units of the current size.
    double texture = 0;       ///< Strength of the paper grain, 0 is off.
    double textureScale = 1;  ///< Zoom of the paper grain.
    double roundness = 1;     ///< Short axis of the tip over its long axis.
    double angle = 0;         ///< Rotation of the tip, degrees.
    double angleJitter = 0;   ///< Random rotation of a dab; 1 is up to 180 degrees either way.
    bool pressureSize = true; ///< Pressure scales the size.
    bool pressureOpacity = false;
    bool pressureFlow = false;
    double minSize = 0.2;      ///< Size without pressure, as a fraction of `size`.
    bool airbrush = false;     ///< A held pen goes on laying dabs.
    double airbrushRate = 20;  ///< Dabs a second while held.
    bool spray = false;        ///< A dab is a burst of droplets.
    double sprayDensity = 30;  ///< Droplets of a dab at full pressure.
    double particleSize = 1.5; ///< Mean diameter of a droplet, pixels.
    double strength = 0.5;     ///< Force of a smudge or blur dab.
    bool isBuiltIn = false;    ///< Belongs to `BrushLibrary`.

    /// Every other setting at its default; without an id the one that `stableID` gives for "category/name".
    BrushSettings(QString name, QString category, BrushKind kind, std::optional<QUuid> id = std::nullopt);

    /// The same identifier for the same text on every machine, so that a stored reference finds its preset again.
    static QUuid stableID(const QString& text);

    /// Brings every number into its range; one that is not finite becomes the lower limit.
    void sanitize();
    /// Pixels of a dab's diameter at a pressure from 0 to 1, before any jitter.
    double sizeAt(double pressure) const {
        return pressureSize ? size * (minSize + (1 - minSize) * pressure) : size;
    }

    /// Reads a record: what is missing, and any setting of the wrong type, keeps its default. Throws JsonTypeError
    /// when the record is no object, when name or category is no text, or when the id is no UUID.
    static BrushSettings fromJson(const nlohmann::json& record);
    nlohmann::ordered_json toJson() const; ///< Every field, in the order above, as it stands.

    bool operator==(const BrushSettings&) const = default;
};

/// One number or flag of a brush: its key in files, its place in the value and, for a number, its range.
struct BrushField {
    const char* key;
    double BrushSettings::*number = nullptr;
    bool BrushSettings::*flag = nullptr;
    double lower = 0;
    double upper = 0;

    constexpr BrushField(const char* fieldKey, double BrushSettings::*field, double lowest, double highest)
        : key(fieldKey),
          number(field),
          lower(lowest),
          upper(highest) {}
    constexpr BrushField(const char* fieldKey, bool BrushSettings::*field) : key(fieldKey), flag(field) {}
};

/// Drives sanitize, decode and encode; the order is that of the value and of its records.
inline constexpr std::array<BrushField, 25> kBrushFields{{
    {"size", &BrushSettings::size, 1, 1000},
    {"opacity", &BrushSettings::opacity, 0, 1},
    {"flow", &BrushSettings::flow, 0.005, 1},
    {"hardness", &BrushSettings::hardness, 0, 1},
    {"spacing", &BrushSettings::spacing, 0.02, 2},
    {"stabilizer", &BrushSettings::stabilizer, 0, 100},
    {"sizeJitter", &BrushSettings::sizeJitter, 0, 1},
    {"opacityJitter", &BrushSettings::opacityJitter, 0, 1},
    {"scatter", &BrushSettings::scatter, 0, 2},
    {"texture", &BrushSettings::texture, 0, 1},
    {"textureScale", &BrushSettings::textureScale, 0.25, 4},
    {"roundness", &BrushSettings::roundness, 0.05, 1},
    {"angle", &BrushSettings::angle, -180, 180},
    {"angleJitter", &BrushSettings::angleJitter, 0, 1},
    {"pressureSize", &BrushSettings::pressureSize},
    {"pressureOpacity", &BrushSettings::pressureOpacity},
    {"pressureFlow", &BrushSettings::pressureFlow},
    {"minSize", &BrushSettings::minSize, 0, 1},
    {"airbrush", &BrushSettings::airbrush},
    {"airbrushRate", &BrushSettings::airbrushRate, 1, 120},
    {"spray", &BrushSettings::spray},
    {"sprayDensity", &BrushSettings::sprayDensity, 1, 400},
    {"particleSize", &BrushSettings::particleSize, 0.5, 20},
    {"strength", &BrushSettings::strength, 0, 1},
    {"isBuiltIn", &BrushSettings::isBuiltIn},
}};

} // namespace qirn
