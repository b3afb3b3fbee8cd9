#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kGradient{"gradient", QIRN_HELP("Gradient tool"),
                          QIRN_HELP("gradient, blend, fade, ramp, linear, radial"), QIRN_HELP(R"(
The Gradient tool ({gradient}) lays a smooth change of color over the active layer, or over the selection if
there is one. Press where it begins, drag, and let go where it ends; a line shows the way while you drag.

## The options
• Linear runs along your line. Radial runs outward from where you pressed. Reflected runs to both sides of where
  you pressed, as light on a pipe.
• Color → transparent: on, from the paint color to nothing; off, from the paint color to the second color.
• Opacity: how much of it covers what is there.

Before the beginning and behind the end the color goes on unchanged, so a short drag gives a hard turn and a
long one a soft turn. A drag of less than a pixel does nothing.

## Try it
• A sky: take a deep blue as paint color and a pale one as second color, and drag from top to bottom with Linear
  on the Background layer.
• A vignette: make a new layer, take black, turn on Color → transparent, choose Linear, and drag a little way
  inward from each edge. Lower the layer's opacity until you hardly notice it.
• A glow: a new layer with the blend mode Screen, a warm color, Radial, Color → transparent.
• Chrome: «tutorial-chrome» is made of gradients.
)")};

} // namespace qirn::PaintHelp
