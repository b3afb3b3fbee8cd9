#pragma once
#include "brush/BrushSettings.h"

#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

namespace qirn {

/// The presets that come with the program, the same for the life of the process.
namespace BrushLibrary {

const std::vector<BrushSettings>& builtIn();
QStringList categories();                                ///< Distinct, in order of first appearance.
std::optional<BrushSettings> named(const QString& name); ///< The first of exactly this name; case matters.

} // namespace BrushLibrary

} // namespace qirn
