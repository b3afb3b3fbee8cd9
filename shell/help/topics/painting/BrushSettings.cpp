#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kBrushSettings{
    "brush-settings", QIRN_HELP("Brush settings explained"),
    QIRN_HELP("size, opacity, flow, hardness, spacing, stabilizer, smoothing, jitter, scatter, texture, "
              "grain, roundness, angle, preset, save brush"),
    QIRN_HELP(R"(
The Brush tab ({brushPanel}) has every setting of the brush in hand. A stroke is made of dabs, stamps of the
brush's tip laid close to each other; most settings say what a dab looks like. With a tool that has no brush,
the tab shows the one of the Brush tool.

## Presets
Presets opens the list, by category, with a picture of each stroke; Hide presets closes it. Type in the field
Search brushes to find one by its name or category, for whatever tool it is. A click takes the preset. The word
"changed" appears when the brush differs from its preset.

## Settings
• Type: Paint, Erase, Smudge or Blur; what the brush does.
• Size: the diameter in pixels, 1 to 400 on the slider and up to 1000 with the ] key.
• Opacity: the most paint one stroke can lay down. A stroke at 50% that crosses itself stays at 50%. For Paint
  and Erase.
• Flow: how fast paint builds up to that opacity while you go over the same spot. For Paint and Erase.
• Strength: how far Smudge drags and how much Blur softens. For those two.
• Hardness: 100% gives a crisp edge, 0% a soft, fuzzy one.
• Spacing: the gap between dabs, in percent of the size. Small is a smooth line, above 100% a row of dots.
• Stabilizer: smooths shaky hands. Higher is smoother but trails behind the pen.

## Pen pressure
• Pressure → size: a light touch is thin. Lightest size is how thin, in percent of the size, at the lightest
  touch.
• Pressure → opacity: a light touch is see-through.
• Pressure → flow: a light touch builds up slowly.

## Shape & texture
• Roundness: 100% is round; lower is a flat tip, as for calligraphy.
• Angle: how the flat tip is turned, −180° to 180°.
• Texture: how strongly the grain of the paper shows, for charcoal, chalk and pencil.
• Grain scale: how coarse the grain is, 0.25× to 4×.

## Jitter
Jitter is chance, a little different for each dab.
• Size jitter: varies the size.
• Opacity jitter: makes some dabs fainter.
• Scatter: throws dabs sideways from the line.
• Angle jitter: turns each dab; 100% is any angle.

## Airbrush & spray
• Airbrush build-up: keeps spraying while the pen is held still.
• Spray rate: dabs per second while it is held. There while build-up or droplets are on.
• Spray droplets: many small droplets instead of a solid dab, as from a spray can.
• Density: droplets per dab at full pressure.
• Droplet size: their diameter in pixels.

## Keep a brush
• Type a name in the field Name and choose Save as new: the brush joins your own, in the category My Brushes.
• Update preset writes the changes into a brush of your own. Built-in brushes are never changed.
• Reset goes back to the saved preset.
• To delete a brush of your own, open the menu of its row (right mouse button) and choose Delete.

## Exchange brushes
Below, under Import / export, Export… writes all brushes of your own to a .qirnbrushes file, or the brush in
hand if you have none yet. Import… adds the brushes of such a file to My Brushes.
)")};

} // namespace qirn::PaintHelp
