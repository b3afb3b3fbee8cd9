#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kStart{"start", QIRN_HELP("Welcome — quick start (10 minutes)"),
                       QIRN_HELP("begin, tutorial, first, how to start, overview, basics"), QIRN_HELP(R"(
Welcome to Qirn Paint. In ten minutes you will have painted, undone, layered, saved and exported. Nothing in
this tour can go wrong: every step can be undone, and changed pictures are copied to safety while you work.

## 1. Look around (1 minute)
The picture lies in the middle. The tools stand at the left edge, each a round button; rest the pointer on one
to read its name and its key. The bar above the picture shows the options of the tool in hand. At the right are
the panels: Color, Brush and Palettes on three tabs, and the layers below them. «workspace» has the whole tour.

## 2. Paint (2 minutes)
• Press {brush} for the Brush. Drag across the picture: that is a stroke.
• Make the brush larger with ] and smaller with [. Try both while the pointer is over the picture, where the
  ring shows the size.
• Choose another brush from the preset menu at the left end of the options bar: Ink Brush for lines that swell,
  Charcoal for grain, Airbrush Soft for mist.
• With a pen, press harder and softer. With a mouse the pressure is always full; «tablet» tells how a mouse can
  make thin lines too.

## 3. Take a color (1 minute)
• In the Color tab, drag round the ring to choose the hue, then in the square inside it to choose how strong and
  how bright it is.
• Hold ⌘ and click in the picture to pick a color that is already there. A click of the right mouse button does
  the same.
• Press X to swap the paint color and the second color.

## 4. Undo without fear (1 minute)
• {undo} takes back the last step, {redo} brings it back. A whole stroke is one step.
• There are 100 steps by default. The status bar tells how many you can go back.

## 5. Use a layer (2 minutes)
• Press {newLayer}. A new, empty layer lies on top of the one you painted on, like a sheet of clear film.
• Paint on it. Then click the eye in its row of the layers panel: the strokes are gone, and what was under them
  is untouched. Click again to have them back.
• Drag the Opacity slider of the panel to let the layer below show through.

## 6. Move about (1 minute)
• Turn the wheel to zoom in and out where the pointer is; with a touchpad, pinch.
• Hold Space and drag to move the picture. Press F to see all of it again.

## 7. Keep it (2 minutes)
• {save} saves a Qirn Paint document (.qirnpaint), which keeps every layer. Save your work in this form.
• {export} writes a copy as PNG, JPEG, TIFF, WebP, OpenRaster or Photoshop PSD, for showing it to others.

## Where to go on
• «tutorial-paint» takes you through a whole picture.
• «brush» shows all brushes, «layers» all that layers can do.
• «shortcuts» lists every key. Click the round question mark beside a tool's title to read about that tool.
)")};

} // namespace qirn::PaintHelp
