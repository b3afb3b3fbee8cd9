#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kSelections{
    "selections", QIRN_HELP("Selections (rectangle, ellipse, lasso)"),
    QIRN_HELP("select, selection, marquee, lasso, rectangle, ellipse, marching ants, deselect, invert, "
              "crop"),
    QIRN_HELP(R"(
A selection is a fence: paint, fills, gradients, erasing and clearing stay inside it. Its edge shows as a moving
dashed line. A picture has one selection, whatever layer is active.

## Make one
• Rectangle Select ({selectRect}): drag a box. Hold ⇧ for a square.
• Ellipse Select ({selectEllipse}): drag an oval. Hold ⇧ for a circle.
• Lasso Select ({lasso}): draw round what you want. The ends join by themselves when you let go.

The same three stand in the Select menu.

## Add to it, cut from it
• Selection mode, in the options bar: New, Add, Subtract or Intersect.
• Or hold a key: ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect with what is selected. With the Lasso ⇧ adds as well.
• Smooth edges gives soft stair-less edges; turn it off for pixel art.

## All, nothing, the opposite
• Select → Select All ({selectAll}), or the button All.
• Select → Deselect ({deselect}), or None, or Esc, or a click without a drag.
• Select → Invert Selection ({invertSelection}), or Invert: what was outside is inside.

## What you can do with it
• Paint in it: nothing spills over the edge. This is the quickest mask there is.
• Fill it: {fillPrimary} with the paint color, {fillSecondary} with the second color. Delete clears it.
• Move or transform it: «transform».
• Copy it: Edit → Copy ({copy}) takes the active layer's part, Edit → Copy Merged ({copyMerged}) what you see of
  all layers, Edit → Cut ({cut}) takes it away. Edit → Paste as New Layer ({paste}) puts it on a new layer, in
  the same place if it came from here.
• Crop to it: Select → Crop to Selection trims the whole picture to the selection's box.

Each change of the selection is an undo step. A selection is not saved with the document.
)")};

} // namespace qirn::PaintHelp
