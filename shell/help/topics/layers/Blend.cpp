#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kBlend{
    "blend", QIRN_HELP("Blend modes explained"),
    QIRN_HELP("blend, multiply, screen, overlay, add, dodge, burn, soft light, hard light, difference, "
              "hue, luminosity, mode"),
    QIRN_HELP(R"(
A blend mode says how a layer mixes with what lies below it. Choose it in the layers panel, in the menu Blend
Mode. Nothing is lost: set it back to Normal at any time. The opacity of the layer tells how much of the effect
you get.

## Normal
• Normal: paint covers. It is what every new layer has.

## Darker
• Multiply: like two slides on top of each other. White disappears, dark stays. The first choice for shadows,
  for glazing and for ink over color.
• Darken: keeps the darker of the two, in each of red, green and blue.
• Color Burn: darkens and makes colors stronger. Deep, burnt shadows.
• Linear Burn: darkens evenly, more than Multiply.
• Subtract: takes the layer's color away from what is below. White gives black.

## Lighter
• Screen: the opposite of Multiply. Black disappears, light stays. For light, mist, glow and stars.
• Lighten: keeps the lighter of the two.
• Color Dodge: brightens strongly and makes colors glow. For fire, neon and sparks.
• Add (Linear Dodge): adds the light of both. The strongest glow; use it in small places.

## More contrast
• Overlay: Multiply where it is dark below, Screen where it is light. For texture and stronger color; middle
  gray does nothing.
• Soft Light: a gentle Overlay. For mood and warm or cold light over a whole picture.
• Hard Light: like Overlay, but the layer decides what is lightened and what darkened.

## Compare
• Difference: how far the two are apart. Alike gives black: good for finding what has changed.
• Exclusion: a softer Difference.

## Parts of the color
• Hue: the hue of the layer, with the strength and brightness below. Change a red car to blue.
• Saturation: only how strong the colors are. A gray layer takes the color out.
• Color: hue and saturation of the layer, with the brightness below. Color a gray drawing with it.
• Luminosity: only the brightness of the layer, with the colors below.

## Try it
• Shadow: new layer, Multiply, a cool gray or violet, Soft Round. Clip it to the thing it falls on («clipping»).
• Sunlight: new layer, Overlay or Soft Light, a warm yellow, Airbrush Soft.
• Lamp: new layer, Add (Linear Dodge), orange, a small Airbrush Soft spot and a large faint one.

Photoshop files keep these modes in both directions: «export», «open».
)")};

} // namespace qirn::PaintHelp
