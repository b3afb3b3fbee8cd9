#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kSaving{"saving", QIRN_HELP("Saving: the Qirn Paint document (.qirnpaint)"),
                        QIRN_HELP("save, save as, document, qirnpaint, file format, keep layers"),
                        QIRN_HELP(R"body(
File → Save ({save}) writes a Qirn Paint document, extension .qirnpaint. It keeps the size and DPI, every layer
with its pixels, name, opacity, blend mode, visibility, locks and clipping, which layer is active, and the onion
skin. The selection and the undo steps are not in the file.

## How to
• The first time, Save asks for a place and a name.
• File → Save As… ({saveAs}) saves under another name; from then on you work on that file.
• The dot on the tab goes when the picture is saved. It comes back with the next change, and undo counts as one.
• File → Close Picture ({closePicture}) closes the tab. With changes it asks: Save…, Cancel or Don't Save. If
  you don't save, your changes go to the Trash as an autosave copy; you can still get them back from there.
• File → Quit ({quit}) asks the same for each picture with changes.

## Safe saving
A save writes the whole file beside the old one and then takes its place. If the disk is full or the power
fails, the old file is still whole, and the picture is still open. The safety copy of «autosave» goes only when
the save has succeeded.

The same people as before may read and change the file. If the file has a second name (a hard link), that one goes
on naming the old picture; a symbolic link goes on naming the new one.

## Changed by another program
If another program, or another machine, has written to the file since you opened or saved it, Save asks first:
Overwrite takes your picture, Save As… keeps both, Cancel saves nothing. A file that is gone is written anew.

## Opened from the Trash
A document that you open inside the Trash is like a picture that was never saved: Save asks for a place, so that
what you put back from the Trash, or empty, is never the picture that is open.

## Opened from another format
A picture that you opened from PNG, JPEG or another format has no document yet; its tab says where it came from,
as in "cat (from PNG)". Save asks for a place, and never overwrites the file that you opened. To write such a
format use «export».

## Recent files
File → Open Recent lists the documents and pictures that you used last; Clear at its end empties the list.
)body")};

} // namespace qirn::PaintHelp
