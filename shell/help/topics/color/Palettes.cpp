#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kPalettes{
    "palettes", QIRN_HELP("Palettes: library, your own palettes, import and export"),
    QIRN_HELP("palette, swatches, gpl, aco, gimp, photoshop swatches, import palette, export palette"),
    QIRN_HELP(R"body(
The Palettes tab ({palettesPanel}) has the palette library: the built-in palettes first, then your own.

## The built-in palettes
Qirn Chrome & Candy, Basic, Grayscale, Skin Tones, Desert & Canyon, Ocean & Sky, Pastels, Neon Night and Autumn
Forest. They are kept as they are: adding or removing a color makes your own copy, named after it with "(my
copy)".

## Use a palette
Choose it in the list. Current tells which it is; its swatches are there and in the Color tab. A click on a
swatch makes it the paint color. Rest the pointer on a swatch to read its name.

## Make one
• Type a name in the field New palette name and choose New: the palette begins with the paint color. Without a
  name it is called My Palette.
• The button New palette from recent colors makes one of the colors that you used last. Paint for a while, then
  keep what you used.
• Add color adds the paint color to the current palette.
• Remove from palette, in the menu of a swatch (right mouse button), takes one out.
• Drag swatches of your own palettes to put them in order. With the keyboard on them, ⌥ and an arrow key move one.
• Rename to gives the palette the name that you typed in the field above.
• Delete palette asks first. Your pictures are not changed.

## Import and export
• Import… reads GIMP palettes (.gpl), Photoshop swatches (.aco) and text lists of #hex colors, and tells how
  many colors it took.
• Export .gpl and Export .aco write the current palette for other programs. Names of colors go along.

Your palettes are saved by themselves.
)body")};

} // namespace qirn::PaintHelp
