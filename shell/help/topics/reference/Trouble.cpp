#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kTrouble{"trouble", QIRN_HELP("Troubleshooting"),
                         QIRN_HELP("problem, help, not working, can't paint, slow, lag, error, fix"),
                         QIRN_HELP(R"(
## I can't paint
Read the message in the bubble; it usually says why. If nothing appears:
• Is there a selection? Paint stays inside it. {deselect} drops it.
• Is the active layer the right one? Another layer may cover what you paint. Its name stands in the status bar.
• Is α Lock or Clip on? Then paint shows only where there is paint already («clipping»).
• Is Opacity or Flow at 0, or the paint color that of the paper?
• Is the tool a paint tool? Press {brush}.
• Is the layer locked or hidden? Click its lock or its eye.

## Keys do nothing
A field may have the keyboard. Click the canvas or press Esc. Pixels that are lifted take Return and Esc first.

## The picture is gone
Press F to see all of it. If the layers are there but the picture is not, look at their eyes and opacity. An
onion skin that is on shows only the layers near the active one: {onionSkin}.

## The picture is mirrored or slanted
That is the view: the status bar says "View flipped" or "View rotated". Press W or /.

## The pen has no pressure
See «tablet».

## It is slow
See «performance».

## I lost my work
Start the program again: it offers what it has copied to safety. If you chose Don't Save, look in the Trash for
the autosave copy; it is a .qirnpaint file and opens as usual. See «autosave».

## A file does not open
• "It may be damaged": try an older copy. Of a Qirn Paint document that is damaged in parts the message offers
  Open What Can Be Read: the rest opens as an unsaved picture, which names the layers that lost something.
• Photoshop files open with their layers if they are 8-bit RGB, others flat («open»).

## Saving fails
The message says why: the disk is full, or the folder may not be written to. The picture is still open, and the
message says whether it is copied to safety. Choose File → Save As… ({saveAs}) and another place.

## The text is too small or too large
View → Zoom In and Zoom Out change the size of the interface: «look».

## Check the program itself
Start it in a terminal with --selftest: it checks itself on your machine, opens no window, and prints a line for
each check. With --benchmark it times strokes, fills and files. If a check fails, tell us: «about».
)")};

} // namespace qirn::PaintHelp
