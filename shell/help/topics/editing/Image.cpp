#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kImage{"image", QIRN_HELP("Image menu: size, canvas, rotate, flip, crop, flatten"),
                       QIRN_HELP("image size, resize, canvas size, rotate, flip, crop, flatten, dpi"),
                       QIRN_HELP(R"(
These change the whole picture, all layers at once. Each is one undo step, and each drops the selection.

## Image Size… ({imageSize})
Scales the picture. Type Width or Height; with Keep proportions on, the other follows. The buttons 25%, 50%,
200% and 300% count from the size it has now. DPI is for printing; a change of DPI alone changes no pixel.
Resize does it. Making a picture bigger can soften it, so begin large enough.

## Canvas Size… ({canvasSize})
Adds empty space around the picture or trims it. Nothing is stretched. Type Width and Height, and choose in the
grid Anchor where the picture stays: in the middle, at an edge or in a corner. Change Canvas does it. What is
cut off is gone from the layers too; undo brings it back.

## Turn and mirror
• Rotate 90° Clockwise, Rotate 90° Counter-clockwise and Rotate 180°.
• Flip Canvas Horizontal and Flip Canvas Vertical.

All are exact: not one pixel is softened. To turn or mirror only what you see, use the view: «navigate». To turn
one layer or a part of it, use «transform».

## Crop
Draw a rectangle with Rectangle Select ({selectRect}) and choose Select → Crop to Selection. The picture becomes
the box round the selection.

## Flatten Image
Makes one layer, named Background, of all that you see. Hidden layers are thrown away. Save a copy with File →
Save As… ({saveAs}) before, if you may want the layers again. To send somebody a flat picture you need not
flatten: «export» does it on the way.

Width and height can be 1 to 30,000 pixels.
)")};

} // namespace qirn::PaintHelp
