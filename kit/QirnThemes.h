#pragma once
#include <span>
#include <vector>

#include "kit/QirnTheme.h"

/// The themes that can be chosen, and which one is.
namespace qirn::QirnThemes {

inline constexpr char kKey[] = "qirn.theme"; ///< The preference that holds the id of the chosen theme.
inline constexpr char kDefaultID[] = "cobalt-gunmetal";

std::span<const QirnTheme> builtIn();
std::vector<QirnTheme> all(); ///< The registered ones behind the built-in ones.
/// Adds themes for this run; one whose id is already known is left out.
void registerThemes(std::span<const QirnTheme> themes);

QString currentID();                  ///< The stored id, known or not, or the default one.
void setCurrentID(const QString& id); ///< Stores it, and puts the theme on every window.
QirnTheme current();
QirnTheme named(const QString& id); ///< An unknown id gives the default theme.

} // namespace qirn::QirnThemes
