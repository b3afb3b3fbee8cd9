#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kUndo{"undo", QIRN_HELP("Undo, redo and history"),
                      QIRN_HELP("undo, redo, history, mistake, go back"), QIRN_HELP(R"(
Edit → Undo ({undo}) takes back the last step and says which; Edit → Redo ({redo}) brings it back. The menu
names the step: "Undo Brush Stroke". The header has buttons for both.

## What is a step
• A whole stroke, fill, gradient, shape or text.
• A transform, from lifting to putting down, however long you played with it. Undo while pixels are lifted
  cancels the transform.
• A change of layers: new, deleted, moved, merged, renamed, another blend mode, a drag of the opacity slider.
• A change of the selection, and of the picture's size.

Not steps: zoom and other changes of the view, colors, tools, brushes, palettes, which layer is active, and the
onion skin.

## How far back
100 steps, or what Preferences say, 20 to 500 («prefs»). A step costs only what it changed, so many steps on a
large canvas are fine; when they hold more than about 1.5 GB the oldest go first. The status bar tells how many
steps there are.

Each picture has steps of its own. They last while the picture is open and also after saving; they are not in
the file.

## When something new is done
After undo, a new step takes the place of the ones you undid; these cannot be redone any more.

## Nothing to undo
The program beeps. It never undoes across opening: the first state is the picture as it was opened or made.
)")};

} // namespace qirn::PaintHelp
