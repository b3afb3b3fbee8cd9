#pragma once
#include "app/commands/CommandRow.h"

#include <span>

class QKeyEvent;

namespace qirn {

/// All commands and dividers, in the order of the menu bar.
std::span<const CommandRow> commandRows();
const CommandRow& commandNamed(const char* name); ///< Stops the process where there is none of that name.

/// The command whose key lies at the place of the one that was pressed, where that types no ASCII (`characterOf`), as on
/// a Greek or Russian keyboard; null for none, and for keys without Command, Option or Control.
const CommandRow* commandAtPlaceOf(const QKeyEvent& event);

} // namespace qirn
