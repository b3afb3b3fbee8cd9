#pragma once
#include "core/PaintColor.h"
#include "platform/DescribedError.h"
#include "platform/Json.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QUuid>

namespace qirn {

struct PaletteColor {
    PaintColor color;
    QString name; ///< Empty where the color has none.

    static PaletteColor fromJson(const Json& record); ///< Throws JsonTypeError unless every key is there.
    OrderedJson toJson() const;

    bool operator==(const PaletteColor&) const = default;
};

/// A named list of colors.
struct Palette {
    QUuid id;
    QString name;
    std::vector<PaletteColor> colors;
    bool isBuiltIn = false; ///< Belongs to `PaletteLibrary` and is never changed.

    static Palette fromJson(const Json& record); ///< Throws JsonTypeError unless every key is there.
    OrderedJson toJson() const;

    bool operator==(const Palette&) const = default;
};

/// Why a palette file was refused.
class PaletteError : public DescribedError {
public:
    static PaletteError unreadable(const QString& detail); ///< "the file is cut short", say.

private:
    using DescribedError::DescribedError;
};

/// The text in which the user's own palettes are kept: a JSON array of palette records.
namespace PaletteStore {

QByteArray encode(std::span<const Palette> palettes); ///< Pretty-printed UTF-8.

/// The whole list or nothing: one record that cannot be read refuses the text.
std::optional<std::vector<Palette>> decode(std::span<const uint8_t> text);

} // namespace PaletteStore

} // namespace qirn
