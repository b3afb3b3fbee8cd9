#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kClipping{
    "clipping", QIRN_HELP("Clipping, lock and alpha lock"),
    QIRN_HELP("clip, clipping, clipping mask, lock, alpha lock, protect, preserve transparency"),
    QIRN_HELP(R"(
Three switches of the layers panel keep paint where it belongs. They are in the Layer menu too.

## Clip
Clip (Layer → Clip to Layer Below, {clip}) shows the paint of a layer only where the layer below it has paint.
Paint a shape on one layer, make a layer above it and clip it: shadows and patterns now stay inside the shape,
and both can still be changed.
• Several layers in a row can be clipped to the same one, the nearest below that is not clipped itself.
• If that layer is hidden, all that are clipped to it are hidden too.
• Release Clipping in the menu of the row, or the same switch again, ends it.

## Lock
Lock (Layer → Lock / Unlock Layer) protects the layer's pixels: no tool, fill, clearing, cutting or transform
changes them, and a message says so when you try. Commands for whole layers (deleting, merging, flattening) and the
Image menu still work on it. A copy of a locked layer begins unlocked.

## α Lock
α Lock (Layer → Alpha Lock On / Off) lets you paint only where the layer already has paint: what is transparent
stays transparent. Change the color of lines without redrawing them, or shade a flat shape.

## Which one
• One color area to shade quickly: α Lock.
• Several shadows and lights that you may want to change later: layers that are clipped.
• A finished layer that no slip of the hand should hurt: Lock.
• A part of a layer, for a moment: «selections».
)")};

} // namespace qirn::PaintHelp
