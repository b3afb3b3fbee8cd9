#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kPrefs{"prefs", QIRN_HELP("Preferences"),
                       QIRN_HELP("preferences, settings, options, autosave interval, pressure curve"),
                       QIRN_HELP(R"(
Edit → Preferences… ({preferences}) opens the Preferences. Every change takes effect at once and is remembered;
there is no OK to press.

## Saving
• Autosave: Every 30 seconds, Every minute, and so on up to Every 10 minutes, or Off (not recommended). See
  «autosave».
• Undo steps, 20 to 500: how far back Undo goes. More steps take more memory. See «undo».

## Pen & tablet
• Pressure, from Soft to Firm. Soft: a light touch gives thick lines. Firm: you must press harder.
• Mouse: simulate pressure from speed (fast = thin).
• Pen's eraser end switches to the Eraser.
• A field to try the pen, which shows what arrives from it. See «tablet».

## Canvas
• Show the brush outline: the ring under the pointer.
• Show stroke performance in the status bar: how long the points of the last stroke took. View → Show Stroke
  Performance is the same.
• New canvases start transparent.
• Eyedropper samples all layers: what you see, and not only the active layer.
• Checkerboard, 4 to 40: the size of the squares shown behind transparent areas.

## Keys
Every menu command and every tool with its key; type in the field above to find one, by its name or by its key.
• Change… (or Return on a row): type the key that you want. Esc leaves it as it is.
• If the key belongs to another command you are told which, before anything changes. Type it again to take it over.
• No Key takes the key away, Reset gives back the key of the design, and Reset All… does so for all of them.

Menus, tips and this help show your keys at once. The plain keys of the canvas, such as [ and ], stay as they are.

## Elsewhere
Themes and interface zoom are in the Theme and View menus: «look». The options of tools, your colors, brushes
and palettes are remembered by themselves.
)")};

} // namespace qirn::PaintHelp
