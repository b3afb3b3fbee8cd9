#pragma once
#include <span>

#include <QString>

namespace qirn {

/// A library, typeface or icon set that comes with the program.
struct Ingredient {
    const char* name;
    const char* licence; ///< By its short name (SPDX where it has one).
};
std::span<const Ingredient> ingredients();

QString aboutLines(); ///< What the About window tells of them, in the marks of a help topic's body.

} // namespace qirn
