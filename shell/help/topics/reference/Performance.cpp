#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kPerformance{"performance", QIRN_HELP("Speed tips and big canvases"),
                             QIRN_HELP("speed, performance, fast, memory, 4k, big canvas, lag"), QIRN_HELP(R"(
The program paints every point of the pen at once, on canvases of 4K and much more. These help it, and you, with
the largest ones.

## What costs time
• Very large soft brushes, several hundred pixels wide, and Blur and Smudge of that size. Reduce the size, or
  raise Spacing a little.
• A high Density of droplets.
• A Stabilizer of 80 and more is not slow: the line trails behind on purpose.
• Merging, flattening, and changing the size of a huge picture. A bar shows how far it is, and Cancel leaves the
  picture as it was.

View → Show Stroke Performance shows the time for each point in the status bar. Below 8 milliseconds a pen of
120 points a second never has to wait.

## What costs memory
• Painted parts of layers: 4 bytes a pixel, in squares of 256 × 256 pixels. What is empty costs nothing, so many
  layers with little on each are cheap.
• Undo steps hold only what changed. If memory is short, lower Undo steps in Preferences.
• Merge layers that are finished: Merge Down ({mergeDown}).

## Big canvases
• Zoom out to work on the whole; only what is visible is drawn. Zoom and rotation never compute the picture
  anew.
• Sketch at half the size, then use Image Size… with 200% and draw the lines at full size.
• 30,000 × 30,000 pixels is the limit. The sheet New Canvas warns from 60 megapixels and tells what a full layer
  takes.

## Saving
• Saving and safety copies work on what has changed since the last time, so the second save is quicker than the
  first.
• Save to a disk of your own machine and copy to a network folder afterwards.
)")};

} // namespace qirn::PaintHelp
