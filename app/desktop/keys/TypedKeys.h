#pragma once
#include <optional>

#include <QChar>

class QKeyEvent;

namespace qirn {

/// Whether a key types one character of ASCII on the keyboard layout in use, or no text at all.
bool typesASCII(const QKeyEvent& event);

/// The character that a key stands for: the one that it types, in its case. Where that is no ASCII, as on a Greek or
/// Russian layout, the lower-case letter or one of , . / [ ] = - that a US keyboard has at the same place. Nothing for other
/// keys.
std::optional<QChar> characterOf(const QKeyEvent& event);

/// The key as a shortcut has it, with its modifiers; a letter with Shift alone is the letter. Nothing for a modifier by
/// itself and for a key that no shortcut can have.
std::optional<int> shortcutOf(const QKeyEvent& event);

} // namespace qirn
