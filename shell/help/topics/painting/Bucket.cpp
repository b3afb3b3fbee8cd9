#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kBucket{"bucket", QIRN_HELP("Bucket Fill (tolerance, contiguous, sample all layers)"),
                        QIRN_HELP("fill, bucket, paint bucket, flood, tolerance, contiguous, leak, gap"),
                        QIRN_HELP(R"(
Bucket Fill ({bucket}) pours the paint color into an area of like color. Click inside the area. The fill goes to
the active layer and stays inside a selection.

## The options
• Tolerance, 0 to 255: how different a color can be from the one you clicked and still get filled. 0 fills only
  exactly that color; 32 is the default; a high value also takes soft edges and shading.
• Contiguous: on, only the area that is connected to your click; off, every matching pixel of the picture.
• Sample all layers: find edges in the finished picture and not only on the active layer.
• Grow, 0 to 4 px: makes the fill that much larger, so that it reaches under soft line edges and no white halo
  is left.

## Color line art the clean way
• Put the lines on a layer of their own, and make a new layer below it ({newLayer}, then {moveLayerDown}).
• With that layer active, turn on Sample all layers and set Grow to 1 or 2.
• Click into each area. The lines hold the color in, and the color lies on its own layer below them.

## When it leaks
• Look for a gap in the line; at 200% and more you can see single pixels. Close it with the Brush and try again.
• Lower the Tolerance.
• Or draw a selection round the area first («selections»).

## Other ways to fill
Edit → Fill with Paint Color ({fillPrimary}) fills the selection, or the whole layer where nothing is selected.
Edit → Fill with Second Color ({fillSecondary}) does it with the other color. Holding ⌘ and clicking picks a
color instead of filling.
)")};

} // namespace qirn::PaintHelp
