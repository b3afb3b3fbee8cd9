#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTransform{
    "transform", QIRN_HELP("Move and transform (scale, rotate, flip)"),
    QIRN_HELP("move, transform, scale, resize selection, rotate, flip, nudge, free transform"), QIRN_HELP(R"(
Move & Transform ({move}) lifts the selected pixels of the active layer, or the whole layer where nothing is
selected, and lets you move, scale, turn and flip them as often as you like before they are put down.

## Step by step
• Press {move} and drag: the pixels come along. Or choose Edit → Free Transform ({freeTransform}), or the button
  Transform in the options bar, to have the box without moving anything.
• Drag inside or outside the box to move. The arrow keys nudge by 1 pixel, with ⇧ by 10.
• Drag a corner to scale. Proportions are kept; with ⇧ held width and height are free.
• Drag the round handle above the box to turn. With ⇧ held it goes in steps of 15°.
• Return puts the pixels down; Esc puts everything back as it was.

## In the options bar
While pixels are lifted the bar has Scale (1 to 400%), Rotate (−180° to 180°), Flip ↔ and Flip ↕, Apply (Return)
and Cancel (Esc). Edit → Apply Transform and Edit → Cancel Transform do the same as the last two.

## Good to know
• However many changes you make, they are computed once, from the lifted pixels, when you apply. So turn and
  scale in one go, not in five.
• Lifting and putting down is one undo step, named Transform. Undo while pixels are still lifted cancels.
• Another tool, another tab, saving, exporting and nearly every command apply it first. Nothing is lost if you
  forget.
• A selection that was only moved goes along. After scaling, turning or flipping it is dropped.
• On a locked layer nothing is lifted. For the whole picture use the Image menu: «image».
)")};

} // namespace qirn::PaintHelp
