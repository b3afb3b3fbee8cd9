#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTutorialPaint{
    "tutorial-paint", QIRN_HELP("Tutorial: a finished painting, start to finish"),
    QIRN_HELP("tutorial, walkthrough, step by step, start to finish, painting, lesson"), QIRN_HELP(R"(
We paint a small landscape: evening sky, a mountain range, a lake with its reflection and a tree in front. Take
half an hour. Undo is always there: {undo}.

## 1. The canvas
• Press {newCanvas} and choose HD 1080p. Name it Evening Lake, leave Background at White and choose Create.
• You have two layers: Background, white, and an empty one above it. Click the row Background to make it active.

## 2. The sky
• In the Color tab type the hex color #F4A259 and press Return. Press X, type #3B4C8C and press Return. The
  paint color is now blue, the second color orange.
• Press {gradient} for the Gradient, with Linear and Color → transparent off. Drag from the top of the picture down
  to about two thirds of its height.
• The water mirrors the sky: press {selectRect} and draw a box over the lower third of the picture. Press X, so that
  orange comes first, take the Gradient again and drag from the top of the box down to its foot. Press
  {deselect}.

## 3. The mountains
• Press {newLayer}. Double click the new layer's name and type mountains.
• Type the color #5B5F8F and press Return. Press {lasso} for the Lasso and draw the outline of a mountain range
  across the middle of the picture, closing it along a level line at about two thirds of the height.
• Press {fillPrimary} to fill it, then {deselect}.
• Turn on α Lock in the layers panel. Press {brush}, choose Dry Brush from the preset menu and the color
  #7E83B5, and brush light on the sides that look to the sun. The paint stays inside the mountains. Turn α Lock
  off again.

## 4. The lake
• Press {duplicateLayer}: the copy is active. Press {freeTransform}, then Flip ↕ in the options bar. Drag the
  mirrored mountains down until their foot meets the foot of the real ones, and press Return.
• Set the Opacity of the layer to 55%.
• Press {blur} for the Blur tool, choose Strong Blur, and go over the reflection from left to right.
• Press {newLayer}, type the color #FFE3B0 and press Return, take the Brush with Airbrush Soft, size 200, and
  set a soft glow on the water under the brightest part of the sky. Set the layer's Blend Mode to Screen.

## 5. The tree
• Press {newLayer} and name it tree. Type the color #1B1A24 and press Return.
• With the Brush and Ink Brush at size 40, draw a trunk at the right from below up to the middle of the sky,
  pressing less towards the top; with size 12 add branches.
• Choose Splatter, set Size to about 160, and dab leaves round the branches.
• Press {newLayer} and turn on Clip in the panel. With Soft Round, a size of 120 and the color #F4A259, brush
  the side of the tree that looks to the light. Only the tree takes the color. Set this layer's Blend Mode to
  Overlay if it is too much.

## 6. Finish
• Press W to see the picture mirrored. What leans now was leaning before; mend it, and press W again.
• For the whole mood: {newLayer}. Press {fillPrimary} with the orange, set Blend Mode to Soft Light and Opacity
  to 25%.
• Press {save} to keep it with all layers, and {export} to write a PNG for others.

## What you have used
«gradient», «selections», «clipping», «transform», «blend» and «brush». The rest is practice.
)")};

} // namespace qirn::PaintHelp
