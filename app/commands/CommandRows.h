#pragma once
#include "app/commands/CommandRow.h"

#include <span>

class QKeyEvent;

namespace qirn {

/// All commands and dividers, in the order of the menu bar.
std::span<const CommandRow> commandRows();
const CommandRow& commandNamed(const char* name); ///< Stops the process where there is none of that name.

/// The command of a key that is no shortcut of the window's actions; null for none. These are plain letters and digits,
/// which are for the control that has the keyboard first, and keys with Command, Option or Control that type no ASCII, as
/// on a Greek or Russian keyboard: there the place of the key counts (`characterOf`).
const CommandRow* commandOfKey(const QKeyEvent& event, const KeyChoices& choices);

} // namespace qirn
