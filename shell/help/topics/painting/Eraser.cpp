#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kEraser{"eraser", QIRN_HELP("Eraser tool"),
                        QIRN_HELP("erase, eraser, rubber, remove, delete paint"), QIRN_HELP(R"(
The Eraser ({eraser}) takes paint away from the active layer, down to transparency; what lies on the layers
below then shows. On the Background layer the gray squares of transparency appear, so keep your painting on a
layer of its own.

## How to
• Drag to erase. One stroke is one undo step.
• ⇧ and a click erases a straight line from where the last stroke ended.
• [ and ] change the size.
• With a pen, turn it round: its eraser end takes this tool by itself («tablet»).

## The options
The preset menu, Size, Opacity, Flow and Stabilizer work as for the Brush. An Opacity of 50% takes half the
paint in one stroke.

## The presets
• Hard Eraser: a clean edge.
• Soft Eraser: a soft edge; press harder to take more.
• Airbrush Eraser: lightens slowly while you hold it. Good for fading smoke and clouds.
• Pencil Eraser: a small tip with grain, leaves a trace as on paper.
• Pixel Eraser: one pixel, for the last corner.

## Other ways to take something away
• The Delete key, or Edit → Clear (Delete Pixels), empties the selection, or the whole layer where nothing is
  selected.
• Hide instead of erase: paint on the layer can be kept inside another one's shape («clipping»), and a hidden
  layer costs nothing («layers»).
• Where α Lock is on, the Eraser leaves the shape of the layer as it is.
)")};

} // namespace qirn::PaintHelp
