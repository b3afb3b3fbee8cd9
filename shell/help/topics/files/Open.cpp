#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kOpen{"open", QIRN_HELP("Opening and importing pictures"),
                      QIRN_HELP("open, import, psd, ora, photo, heic, png, jpeg, drag, paste, picture"),
                      QIRN_HELP(R"(
## Open
File → Open… ({open}) opens Qirn Paint documents, PNG, JPEG, TIFF, HEIC, GIF, BMP, WebP, OpenRaster and Photoshop PSD,
each on a tab of its own. You can choose several at once. A file that is already open shows its tab instead of a
second one. What counts is the content of a file, not its extension.
• A file that you open on the desktop, or with the program's name in a terminal, comes to the window that is open
  already. It waits there until a question, a sheet or a stroke is over.
• A photo comes the right way up, and with its DPI if it has one.
• Pictures in another color space, in CMYK or with 16 bits, become 8-bit sRGB.
• Of an animation the first picture is read.
• A picture larger than 30,000 pixels on a side is refused.

## As a layer
• File → Import Picture as Layer… ({importLayer}) puts a picture on a new layer of the one that is open, in the
  middle.
• Drop a file or a picture from another program on the canvas: the same. Drop files on the tabs to open them as
  pictures of their own.
• Edit → Paste as New Layer ({paste}) takes a picture from the clipboard.

Afterwards use Move ({move}) to place and scale it; see «transform». What lies outside the canvas is cut off: if
the picture is larger, open it on a tab of its own and make it smaller first («image»).

## Photoshop files
Layers come with name, opacity, blend mode, visibility, clipping and their pixels. Groups become a plain list.
Masks, effects, adjustment layers and live text are not read; a message says what a file was opened without, and
the tip of the tab keeps it. Files that cannot be read as layers, such as 16-bit or CMYK, open as one flat
layer.

## If a file does not open
The message says why: it is damaged, cut short, too large or of an unknown kind. Where only parts of a Qirn
Paint document are damaged it offers to open the rest. See «trouble».
)")};

} // namespace qirn::PaintHelp
