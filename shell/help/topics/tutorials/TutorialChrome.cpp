#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTutorialChrome{
    "tutorial-chrome", QIRN_HELP("Tutorial: chrome and candy-paint lettering"),
    QIRN_HELP("chrome, candy, lettering, logo, harley, metal, tutorial, custom paint"), QIRN_HELP(R"(
Lettering as on a tank or a hood: a chrome word and a candy word. The built-in palette Qirn Chrome & Candy has
the colors; choose it in the Palettes tab, and its swatches show in the Color tab too. Rest the pointer on a
swatch to read its name.

## 1. Ground
• Press {newCanvas}, choose Banner header 3:1 and choose Create.
• Make Background the active layer. Click the swatch Gloss Black and press {fillPrimary}.

## 2. The word
• Click the empty layer above to make it active. Click the swatch Chrome Highlight.
• Press {text} for the Text tool and click near the left edge, a third down from the top. Type CHROME, choose a
  heavy font, Bold, a Size of 220, and choose Place Text.
• Press {move} and drag the word to the middle; press Return. The word is on a layer of its own.

## 3. Chrome
Chrome mirrors sky above and ground below, with a hard dark line at the horizon.
• Press {newLayer} and turn on Clip: everything on this layer now stays inside the letters.
• Sky: click the swatch Cobalt, press X, click the swatch Mirror White. Press X again: paint color Cobalt,
  second color Mirror White. With the Gradient ({gradient}), Linear, Color → transparent off, drag from the top
  of the letters straight down to their middle; hold the line upright.
• Ground: press {selectRect} and draw a rectangle over the lower half of the letters, from their middle to below
  them. Click the swatch Gloss Black, press X, click Brushed Steel, press X again. With the Gradient drag from
  the middle of the letters down to their foot. Press {deselect}.
• The horizon is now hard, dark below and white above. Soften nothing: that is what looks like metal.

## 4. Edge and sparkle
• Edge: make the word's own layer active and press {duplicateLayer}, then {moveLayerDown}. Turn on its α Lock,
  click the swatch Gunmetal, press {fillPrimary}, and turn α Lock off. Press {freeTransform}, press the down
  arrow 4 times and the right arrow 4 times, and press Return. The letters stand up from the ground.
• Sparkle: make the top layer active and press {newLayer}. Set its Blend Mode to Add (Linear Dodge). Click
  Mirror White. With the Brush and Airbrush Fine at size 60 press once for a moment on two or three corners.
  Choose Studio Pen at size 4 and draw a thin cross through each spot, holding ⇧ and clicking from end to end.

## 5. Candy
Candy paint is a see-through color over metal flake.
• Hide the layers of the word with their eyes, and make the top layer active. For the second word: Text ({text}),
  color Candy Apple Red, CANDY, the same font.
• Flake: {newLayer}, Clip on. Choose the Brush with Fine Mist at size 200, click Chrome Highlight, and spray
  over the letters. Set Blend Mode to Overlay and Opacity to 60%.
• Depth: {newLayer}, Clip on. Take Gloss Black and Airbrush Soft at size 150, and go along the lower edge of the
  letters. Set Blend Mode to Multiply and Opacity to 70%.
• Shine: {newLayer}, Clip on. With Ellipse Select ({selectEllipse}) draw a long flat oval over the upper half of
  the letters. Take Mirror White, the Gradient with Linear and Color → transparent on, and drag from the top of
  the letters to their middle. {deselect}. Set Blend Mode to Screen and Opacity to 50%.

## 6. Keep it
{save} keeps every layer; for a transparent logo hide Background and {export} a PNG. «text», «clipping» and
«blend» explain what you used.
)")};

} // namespace qirn::PaintHelp
