#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kSmudgeBlur{"smudge-blur", QIRN_HELP("Smudge and Blur tools"),
                            QIRN_HELP("smudge, blend, finger, blur, soften, smear"), QIRN_HELP(R"(
Both work on paint that is already there, on the active layer; neither uses the paint color.

## Smudge ({smudge})
It drags wet paint along, as a finger does. Begin in one color and pull it into the other.
• Smudge: the usual one.
• Finger Blend: larger, softer and stronger; for skies and skin.

Short strokes across the border of two colors blend them; long strokes along it make hair, fur and smoke.

## Blur ({blur})
It softens what you go over, more with each pass.
• Blur: the usual one.
• Strong Blur: larger and stronger; for a background that should step back.

## The options
• Strength is how far Smudge carries the paint and how much Blur softens in one pass.
• Size and Stabilizer are as for the Brush, and so are [ and ] and a straight line with ⇧ and a click.

All settings are in the Brush tab («brush-settings»): a low Hardness blends without an edge.

## Good to know
• They see the active layer only. To blend colors of two layers, merge the layers first, or paint both on one.
• Inside a selection they stay inside it. With α Lock the shape of the layer stays as it is and only its colors
  move.
• Hold ⌘ and click to pick a color without leaving the tool.
)")};

} // namespace qirn::PaintHelp
