#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kShortcuts{"shortcuts", QIRN_HELP("Keyboard shortcuts"),
                           QIRN_HELP("keyboard, shortcuts, keys, hotkeys, commands"), QIRN_HELP(R"(
These are the keys as they are now. You can give every command and every tool another key: Preferences
({preferences}), section Keys. The list here follows. Letters and signs without a modifier work while the
keyboard is with the canvas; click it, or press Esc in a field, to give it the keys.

{all keys}

## While you press
• ⇧ and a click with Brush, Eraser, Smudge or Blur: a straight line from where the last stroke ended.
• ⌘ and a click, or the right mouse button, with a paint tool: pick a color.
• ⇧ with shapes and selections: square, circle, lines in steps of 45°.
• ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect, with the selection tools.
• Space: Hand for as long as you hold it. With ⌘ it zooms, with ⇧ it turns the view.
• Middle mouse button: move the picture.
)")};

} // namespace qirn::PaintHelp
