#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kOnion{"onion", QIRN_HELP("Onion skin (light table) view"),
                       QIRN_HELP("onion, onion skin, light table, ghost, trace, animation"), QIRN_HELP(R"(
A light table shines through several sheets of paper. The onion skin does the same with layers: the ones next to
the active layer show as see-through ghosts, so that you can trace a sketch or draw the next picture of a
movement. It is a view only. Saved and exported pictures never contain ghosts.

## Turn it on
Layer → Turn Onion Skin On ({onionSkin}), or the switch in the title of the section Onion skin in the layers
panel; the arrow beside it opens the settings.
Layer → Turn Onion Skin Off ends it.

## Its settings
• Layers below and Layers above: how many on each side show, 0 to 5.
• Ghost strength: how strongly the nearest ghosts show, 0 to 100%. Each step further away is fainter.
• Color ghosts (red below, green above): off, ghosts are in their own colors.

## What you see
• The active layer with its own opacity, even if it is hidden, and plain: without its blend mode and clipping.
• Ghosts of its neighbors, also of hidden ones.
• A layer named Background at the bottom, as paper behind everything, as long as it is not near enough to be a
  ghost itself.
• No other layers. Go to another layer and the ghosts follow.

The settings belong to the picture and are saved in its document. They make no undo steps. The Eyedropper picks
from the picture, never from a ghost. «tutorial-onion» shows it in use.
)")};

} // namespace qirn::PaintHelp
