#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kText{"text", QIRN_HELP("Text tool"),
                      QIRN_HELP("text, type, font, letters, words, title, outline text"), QIRN_HELP(R"(
Take the Text tool ({text}) and click where the text should go. The sheet Add Text comes up.

## The sheet
• Type your words; Return begins a new line. A preview shows them as they will be.
• Font lists the families of your system, each in its own letters.
• Size, 6 to 600 pixels of the picture.
• Bold and Italic.
• Left, Center or Right: how lines stand within the widest one.
• Outline (second color) draws an edge round the letters; Width, 1 to 40, is how thick.
• Place Text puts them down, Cancel leaves the picture alone.

The letters are in the paint color, the outline in the second color; choose both before you click.

## Afterwards
• The text is on a new layer of its own, named after its words, with its top left corner where you clicked. A
  selection does not cut it.
• It is pixels now: the letters cannot be edited any more. Undo once takes the layer away and you can place it
  again; font and style are remembered.
• Move & Transform ({move}) puts it in its exact place, and turns and scales it.
• To paint inside the letters, put a layer above and clip it: «clipping». «tutorial-chrome» does that.
)")};

} // namespace qirn::PaintHelp
