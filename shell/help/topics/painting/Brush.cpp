#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kBrush{
    "brush", QIRN_HELP("Brush tool and the brush presets"),
    QIRN_HELP("paint, pen, pencil, ink, marker, brush, draw, preset, charcoal, chalk, calligraphy"),
    QIRN_HELP(R"(
The Brush tool ({brush}) paints with the paint color on the active layer.

## Painting
• Press and drag. One stroke, from press to release, is one undo step.
• ⇧ and a click draws a straight line from where the last stroke ended. Click on with ⇧ held for lines that
  join.
• Hold ⌘ and click, or click with the right mouse button, to pick the color under the pointer; you need not
  leave the brush.
• ] makes the brush larger, [ smaller. The size can go up to 1000 pixels; the slider ends at 400.
• Esc during a stroke drops it.

Painting stays inside a selection, if there is one, and on a locked or hidden layer it is refused in words.

## The options
• The preset menu, named Brush preset, has every brush of the tool in hand with a picture of its
  stroke, by category.
• Size is the diameter in pixels.
• Opacity is the most paint that one stroke lays down, however often it crosses itself.
• Flow is how fast the paint builds up towards that while you go over a spot.
• Stabilizer smooths shaky lines; the line then trails a little behind the pen and catches up when you lift it.

Every change stays with the tool until you choose another preset. All other settings are in the Brush tab:
«brush-settings».

## The presets
• Pens: Studio Pen, a crisp all-round line; Fine Liner, the same width at any pressure; Ballpoint, faint at a
  light touch.
• Pencils: Pencil HB, Pencil 6B, which is softer and darker, and Sketch Pencil, light and loose.
• Inks: Ink Brush swells strongly with pressure; Calligraphy Ink has a flat tip at 45°; Dry Ink breaks up over
  the grain.
• Markers: Marker, Chisel Marker and Highlighter stay see-through; one stroke does not darken itself.
• Round Brushes: Hard Round for solid painting, Soft Round for soft shading, Wet Wash for thin layers that build
  up.
• Airbrush: Airbrush Soft, Airbrush Fine, Spray Can, Fine Mist and Splatter. See «airbrush».
• Texture: Charcoal, Chalk, Dry Brush and Pastel Grain show the grain of the paper.
• Smudge & Blur: Smudge, Finger Blend, Blur and Strong Blur. See «smudge-blur».
• Erasers: Hard Eraser, Soft Eraser, Airbrush Eraser, Pencil Eraser and Pixel Eraser. See «eraser».

Choosing an eraser, smudge or blur preset that you found by the search of the Brush tab takes the tool that it belongs to, and the Brush
keeps the brush it had.

## Brushes of your own
Change what you like, give it a name in the Brush tab and choose Save as new. «brush-settings» tells how, and
how to exchange brushes with other people.
)")};

} // namespace qirn::PaintHelp
