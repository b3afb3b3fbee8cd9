#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTablet{
    "tablet", QIRN_HELP("Pen tablets (Wacom and others) and pressure"),
    QIRN_HELP("wacom, tablet, stylus, pen, pressure, xp-pen, huion, cintiq, intuos, eraser end, tilt"),
    QIRN_HELP(R"body(
Any tablet that your desktop knows works at once: Wacom Intuos and Cintiq, XP-Pen, Huion and others. There is
nothing to set up in the program.

## What the pen does
• Pressure makes a stroke thinner or thicker, fainter or stronger, as the brush says: the switches Pressure →
  size, Pressure → opacity and Pressure → flow in the Brush tab.
• The eraser end takes the Eraser while it is near the tablet, and gives back the tool that you had when you
  turn the pen round again. Preferences can switch that off.
• A button of the pen that is set to the right mouse button picks the color under the tip.
• Every point that the tablet sends is painted; none is left out. Tilt is shown in Preferences, but no brush of
  this version uses it.

## See that it works
The meter Pressure in the status bar moves while you press. In Preferences ({preferences}), the section Pen &
tablet has a field to try the pen: it shows the device, whether it is the tip or the eraser end, the pressure as
the tablet tells it and as the program uses it, tilt, and how many points a second arrive.

## A softer or firmer touch
In the same section, the slider Pressure bends the curve. Soft: a light touch gives thick lines. Firm: you must
press harder. Normal leaves the pressure as it is. Paint in the field below it and stop where your hand feels
at ease.

## Without a tablet
A mouse paints at full pressure. Turn on "Mouse: simulate pressure from speed (fast = thin)" in Preferences, and
quick movements give thin lines, slow ones thick lines.

## If the pressure does not change
• Check that the brush uses pressure: Studio Pen does, Fine Liner and Marker do not change their width.
• Look at the meter. If it jumps to full and stays there, the desktop takes the pen for a mouse: look into the
  desktop's tablet settings and plug the tablet in again.
• «trouble» has more.
)body")};

} // namespace qirn::PaintHelp
