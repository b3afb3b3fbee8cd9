#pragma once
#include "app/model/PaintModel.h"
#include "kit/rows/ControlRows.h"

#include <span>

/// The controls of the preferences, a table for each section.
namespace qirn::PreferenceRows {

using Row = ControlRow<PaintModel>;

std::span<const Row> saving();
std::span<const Row> pen();
std::span<const Row> canvas();

/// The times between two safety copies that can be chosen now, in seconds; 0 turns them off. One that is stored and
/// none of them is among them.
std::vector<double> autosaveChoices(double stored);
QString autosaveText(double seconds); ///< "Every 2 minutes".

} // namespace qirn::PreferenceRows
