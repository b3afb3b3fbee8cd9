#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kLayers{
    "layers", QIRN_HELP("Layers"),
    QIRN_HELP("layer, layers, new layer, duplicate, delete layer, hide, visibility, reorder, merge, "
              "flatten, rename, opacity"),
    QIRN_HELP(R"(
Layers are sheets of clear film on top of each other. You paint on the active one, whose row is marked in the
layers panel; the top row is the top layer. The panel's title tells how many there are.

## The commands
• New Layer ({newLayer}) lays an empty one above the active one.
• Duplicate Layer ({duplicateLayer}) makes a copy.
• Delete Layer asks first, unless the layer is empty. The last layer is only emptied: a picture always has one.
• Move Layer Up ({moveLayerUp}) and Move Layer Down ({moveLayerDown}) change the order.
• Merge Down ({mergeDown}) puts the layer into the one below it, with its opacity and blend mode.
• Merge Visible ({mergeVisible}) makes one layer of all that are shown; hidden ones stay.
• Image → Flatten Image makes one layer of everything and throws hidden layers away.

They are in the Layer menu, and the panel has buttons for most of them. The menu of a row (right mouse button)
has them for that row: Rename…, Duplicate, Merge Down, Clip to Layer Below or Release Clipping, Lock Layer or
Unlock Layer, Alpha Lock, Clear Pixels and Delete Layer….

## In a row
• The eye hides the layer and shows it again (Layer → Show / Hide Layer). You cannot paint on a hidden layer.
• The little picture follows what you paint. The gray squares are transparent.
• A click on the row makes it the active layer.
• Double click the name, or press F2, to rename it in place. Rename… opens the sheet Rename Layer.
• Drag a row up or down; a line shows where it will land.
• Small buttons for Lock, α Lock and Clip light up while they are on; click them to turn them on or off. Those that
  are off show in the active row and in the one under the pointer.
• Below the name stand the opacity, and the blend mode if it is not Normal.
• With the keyboard on the list: the arrow keys go from row to row and from mark to mark, Space turns a mark,
  and with ⌘ or ⌥ the up and down arrows move the layer. Letters and Delete are the canvas's.

## For the active layer
• The menu Blend Mode: how the layer mixes with those below. See «blend».
• Opacity: drag and watch. One drag is one undo step.
• Clip, Lock and α Lock: see «clipping».

## Advice
• Keep sketch, lines, color and light on layers of their own. You can change one without hurting the others.
• Empty layers and empty parts of layers take no memory.
• Names help: "lines", "skin", "shadow".
• Layers near the active one can shine through for tracing: «onion».
)")};

} // namespace qirn::PaintHelp
