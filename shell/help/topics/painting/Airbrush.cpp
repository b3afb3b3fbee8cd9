#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kAirbrush{
    "airbrush", QIRN_HELP("Airbrush and spray (with pressure control)"),
    QIRN_HELP("airbrush, spray, spray can, mist, splatter, density, droplets, build up, pressure"),
    QIRN_HELP(R"(
An airbrush goes on laying paint while you hold it in one place; a spray lays droplets instead of a solid spot.
Both are brushes of the Brush tool ({brush}), in the category Airbrush.

## The five presets
• Airbrush Soft: wide and very soft. Pressure is the trigger: press lightly for a breath of color, harder for
  more.
• Airbrush Fine: the same at a size for details.
• Spray Can: droplets in a round spot, as from a can. Hold still and the spot fills.
• Fine Mist: many tiny droplets, for haze and dust.
• Splatter: few large drops of different sizes, for paint that was flicked.

For taking paint away in the same manner there is the Airbrush Eraser of the Eraser tool.

## Shade a ball
• Paint a disk with Hard Round on a layer of its own, and turn on α Lock for that layer, so that paint stays
  inside the disk («clipping»).
• Take a darker color and Airbrush Soft at a size of about half the disk. Go round the shadow side lightly,
  several times.
• Take a light color and hold the brush still for a moment where the light falls.

## Make it yours
In the Brush tab, under Airbrush & spray:
• Airbrush build-up decides whether holding still adds paint. A brush with Spray droplets sprays on in any case.
• Spray rate is how many dabs a second are laid while you hold.
• Density is the number of droplets in a dab at full pressure: press harder to spray more.
• Droplet size is their diameter.
• Flow sets how much each dab adds, Opacity where it ends: with an Opacity of 50% a spot never gets darker than
  half, however long you hold.

Pressure → flow makes the pen a trigger. A mouse always presses fully, so turn Flow down for a mouse; 5% is a
good start. See «brush-settings» and «tablet».
)")};

} // namespace qirn::PaintHelp
