#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kColor{
    "color", QIRN_HELP("Colors: wheel, sliders, hex, swatches and recent colors"),
    QIRN_HELP("color, colour, wheel, hue, saturation, brightness, rgb, hsb, hex, swatch, recent"),
    QIRN_HELP(R"(
There are two colors: the paint color, with which you paint, and the second color, for gradients, outlines and
filling. Both lie below the tools. X swaps them; ⇧D makes them black and white.

## The color wheel
In the Color tab ({colorPanel}):
• Drag in the ring to choose the hue.
• Drag in the square to choose saturation (left to right) and brightness (bottom to top).
• A drag goes on where it began: from the ring across the square it still changes the hue.
• With the keyboard on it, the arrow keys move in the ring and in the square.

The hue stays when you go down to black or over to gray and come back.

## The sliders
Hue (0 to 360°), Saturation and Brightness (percent). The switch RGB shows Red, Green and Blue (0 to 255)
instead. Click a value to type it.

## The hex field
Hex shows the color as #RRGGBB. Type or paste one, #B3001B or a short one such as #F80, and press Return. What
is no color beeps and stays, so that you can mend it; Esc brings back the one before.

## Swatches
• Recent colors keeps the last 18 colors that you painted with, picked or typed. Trying colors in the wheel adds
  nothing to them.
• Below it are the swatches of the current palette; the + beside its name adds the paint color to it. See
  «palettes».

A click on a swatch takes its color.

## From the picture
Hold ⌘ and click with a paint tool, or use the «eyedropper».

## What colors are here
All pictures are in sRGB with 8 bits for each of red, green and blue. Pictures in another color space are
converted when they are opened («open»).
)")};

} // namespace qirn::PaintHelp
