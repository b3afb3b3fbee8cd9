#pragma once
#include "formats/palettes/Palette.h"

#include <cstdint>
#include <span>
#include <vector>

#include <QByteArray>
#include <QString>

namespace qirn {

/// The palettes that come with the program, and palettes as other programs write and read them.
///
/// Every reader gives a palette of the user's own, with a fresh id, or throws PaletteError. `fallbackName` is the
/// name of a palette whose file does not bring one.
namespace PaletteLibrary {

const std::vector<Palette>&
builtIn(); ///< The same, ids included, for the life of the process and everywhere.

struct Entry {
    const char* hex;
    const char* name;
};
/// A built-in palette; an entry whose code is none is left out.
Palette pal(const QString& name, std::span<const Entry> entries);

/// GIMP's text form. A color without a name gets its "#RRGGBB" code as one; alpha is left out.
QString gpl(const Palette& palette);
/// Photoshop's swatches, big-endian: the first section for old readers, the second with the names.
///
///     u16 1, u16 count, each color: u16 space, four u16 values
///     u16 2, u16 count, each color: the same, u32 units n, n UTF-16 units, the last of them 0
///
/// The spaces: 0 RGB, 1 HSB, 2 CMYK with the inks inverted, 8 gray up to 10000. Written is RGB. The counts end at
/// 65,535, and so does what is written of a palette.
QByteArray aco(const Palette& palette);

Palette readGPL(const QString& text, const QString& fallbackName);
Palette readACO(std::span<const uint8_t> data, const QString& fallbackName);
/// Codes of any form that `PaintColor::fromHex` knows, between blanks, tabs, commas, semicolons or line ends; what
/// is no code is passed over.
Palette readHexList(const QString& text, const QString& fallbackName);

/// A file of any of these forms, told apart by the extension of its name and by its first words.
Palette read(std::span<const uint8_t> data, const QString& fileName);

} // namespace PaletteLibrary

} // namespace qirn
