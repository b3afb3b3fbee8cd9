#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kNavigate{
    "navigate", QIRN_HELP("Zoom, pan, rotate and flip the view"),
    QIRN_HELP("zoom, pan, hand, rotate, flip, mirror, pinch, touch, fingers, scroll, fit, 100%, navigate, move around"),
    QIRN_HELP(R"(
All of this changes only how you look at the picture, never the picture. Each picture keeps its own view.

## Zoom
• Turn the mouse wheel, or pinch on a touchpad: the zoom goes in and out around the pointer. With two fingers on
  a touchpad and ⌘ held it zooms too.
• On a touch screen two fingers hold the picture: draw them apart, move and turn them, and it follows. One finger
  does nothing to it, and while the pen is near so do two: a hand may rest on the screen.
• = zooms in and - zooms out in steps. The same commands stand in the View menu: Canvas: Zoom In ({zoomIn}) and
  Canvas: Zoom Out ({zoomOut}).
• F fits the picture in the window (Canvas: Fit in Window), 1 shows it at 100% (Canvas: Actual Pixels 100%): one
  pixel of the picture is one pixel of the screen.
• The Zoom tool ({zoom}): drag to the right to zoom in around the place you pressed, to the left to zoom out. A
  click with ⌥ or ⌘ held is one step out.
• With any tool, hold Space and ⌘ and drag.

The zoom goes from 1% to 6400%. From 200% up the pixels show as squares.

## Pan
• Hold Space and drag, with any tool. Or drag with the middle mouse button.
• With a touchpad or on a touch screen, move two fingers.
• The Hand (Pan) tool ({hand}) drags the picture; a double click with it fits the picture in the window.

## Rotate
• , turns the view 15° to the left, . turns it 15° to the right, / sets it straight. In the View menu these are
  Canvas: Rotate Left 15°, Canvas: Rotate Right 15° and Canvas: Reset Rotation.
• Hold Space and ⇧ and drag round the middle to turn it freely, as you would turn paper.
• Two fingers that turn on a touch screen, or on a touchpad that reports it, turn the view. Lifted within 2° of
  straight, they leave it straight.

## Flip the view
W mirrors the view (Canvas: Flip View), and W again brings it back. Faces and perspective that lean to one side
show at once in a mirror. You can paint while the view is rotated or flipped; strokes land under the pen. To
mirror the picture itself see «image».

## In the options bar
With the Hand or Zoom tool the bar shows the zoom, buttons for Fit, 100%, − and +, the slider Rotate view,
Reset, and Flip view. The status bar tells when the view is rotated or flipped.
)")};

} // namespace qirn::PaintHelp
