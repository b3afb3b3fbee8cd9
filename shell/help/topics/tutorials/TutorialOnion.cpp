#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTutorialOnion{
    "tutorial-onion", QIRN_HELP("Tutorial: sketch-to-ink and simple flip-book drawing with onion skin"),
    QIRN_HELP("onion, tutorial, trace, inking, flip book, animation, frames"), QIRN_HELP(R"(
Two things that a light table is for. «onion» explains the settings.

## Part 1: from sketch to ink
• Press {newCanvas}, choose Square post and Create. You have Background and an empty layer; double click the
  empty one's name and call it sketch.
• Press {brush}, choose Sketch Pencil, and draw a simple figure, say a cat. Draw loosely, several lines over
  each other.
• Press {newLayer} and name it ink. Press {onionSkin}: the onion skin is on, and the sketch shows through as a
  red ghost.
• If the ghost is too strong, lower Ghost strength in the section Onion skin (the arrow beside it opens the
  settings) to about 25%. Set Layers below to 1.
• Choose Ink Brush at size 14, take black (⇧D), and draw the clean lines over the ghost. Press more in curves
  and less at the ends. A higher Stabilizer calms the hand. Turn the view with , and . so that each line comes
  the way your wrist likes best.
• Press {onionSkin} again. Hide the layer sketch with its eye: the drawing stands alone.
• Color it on a layer between the two, with «bucket»: make the sketch layer active, press {newLayer}, turn on
  Sample all layers, set Grow to 1, and click into the areas.

## Part 2: a flip book
A ball that falls and bounces, in five drawings.
• {newCanvas}, Square post, Create. Name the empty layer 1. Take the Shapes tool ({shape}) with Ellipse and
  Fill, and draw a ball at the top left, holding ⇧ for a circle.
• Press {newLayer}, name it 2, press {onionSkin} and set Layers below to 1, Layers above to 1.
• You see drawing 1 as a ghost. Draw the ball a little to the right and lower. {newLayer}, name it 3, and set Layers
  below to 2: now 2 is a clear ghost and 1 a fainter one. Draw the ball on the ground, a little flat.
• Go on with 4 and 5, on the way up. The gaps between ghosts tell the speed: small gaps are slow, wide gaps are
  fast. A ball is slow at the top and fast near the ground.
• Click through the rows of the layers panel from the bottom upward to see the movement; ghosts of the layers
  above show in green. On drawings 1 and 2 the paper itself is near enough to be a ghost; set Layers below to 0 or 1
  there.

## To take the drawings out
Turn the onion skin off. Hide all drawings but Background and 1, and press {export} for a PNG; then hide 1, show
2, and so on. Put the five files together in any program that makes GIFs or films. Or export once as Photoshop
PSD (layers kept), which many of them read.
)")};

} // namespace qirn::PaintHelp
