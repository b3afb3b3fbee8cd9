#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kEyedropper{"eyedropper", QIRN_HELP("Eyedropper (pick a color)"),
                            QIRN_HELP("eyedropper, pick color, sample, color picker, dropper"), QIRN_HELP(R"(
The Eyedropper ({eyedropper}) makes the color that you click the paint color, and adds it to the recent colors.
The picked color is always opaque. Where the picture is transparent there is nothing to pick, and a message says
so.

## Sample all layers
On, as at first: the color that you see, all layers together. Off: only the color on the active layer. The same
choice stands in Preferences as "Eyedropper samples all layers".

## Without changing the tool
With the Brush, Eraser, Smudge, Blur, Bucket Fill, Gradient or Shapes tool in hand:
• hold ⌘ and click, or
• click with the right mouse button, or the pen button that is set to it.

Desktops often keep ⌥ and a click for moving windows; where yours does not, ⌥ works as well.

## Onion skin
Ghosts of the onion skin are only a view; the Eyedropper picks the color of the picture itself. More about
colors: «color».
)")};

} // namespace qirn::PaintHelp
