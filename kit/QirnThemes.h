#pragma once
#include <functional>
#include <span>
#include <vector>

#include "kit/QirnTheme.h"

/// The themes that can be chosen, and which one is.
namespace qirn::QirnThemes {

inline constexpr char kKey[] = "qirn.theme"; ///< The preference that holds the id of the chosen theme.
inline constexpr char kDefaultID[] = "cobalt-gunmetal";

/// Where the chosen id is kept; the kit knows no preferences of its own. Without one it is kept for this run.
struct Store {
    std::function<QString()> read; ///< Empty when nothing is stored.
    std::function<void(const QString&)> write;
};
void useStore(Store store);

std::span<const QirnTheme> builtIn();
/// Adds themes for this run; one whose id is already known is left out.
void registerThemes(std::span<const QirnTheme> themes);

QString currentID(); ///< The stored id, known or not, or the default one.
void setCurrentID(const QString& id);
QirnTheme current();
QirnTheme named(const QString& id); ///< An unknown id gives the default theme.

} // namespace qirn::QirnThemes
