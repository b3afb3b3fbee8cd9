#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kExport{"export", QIRN_HELP("Exporting: PNG, JPEG, TIFF, WebP, OpenRaster and Photoshop PSD"),
                        QIRN_HELP("export, png, jpeg, jpg, tiff, webp, openraster, ora, krita, gimp, mypaint, psd, photoshop, share, print, transparency"),
                        QIRN_HELP(R"(
File → Export (PNG, JPEG, TIFF, PSD)… ({export}) saves a copy for sharing, printing or other programs. Your
document is not changed, and a picture that was only exported still counts as unsaved.

## The formats of the sheet Export
• PNG (keeps transparency): lossless. Best for artwork, logos and the web.
• JPEG (photos, smallest): smallest files for photos and sharing. Quality goes from 30% to 100%. JPEG has no
  transparency; see-through areas get the Background that you choose: White, Black or Second color.
• TIFF (print, lossless): lossless with the canvas DPI, good for print shops.
• WebP (web, lossless) and WebP (web, smallest): the first smaller than PNG, the second as small as JPEG, with a
  Quality; both keep transparent areas. For sides of up to 16,383 pixels.
• OpenRaster (layers kept): for Krita, GIMP and MyPaint. Pixels, names, opacity, hidden layers and most blend
  modes are kept, in Krita and MyPaint clipping as well. A message tells what may be shown differently.
• Photoshop PSD (layers kept): for Photoshop, Affinity, GIMP, Krita, Procreate and ibis Paint. Pixels, names,
  opacity, blend modes, hidden layers and clipping are kept. Text and shapes are already pixels.
• Photoshop PSD (flattened): one flat picture in Photoshop's format.

The line of facts tells size, DPI and number of layers. Export… asks for the place. The sheet remembers the
format and the quality.

## What is in it
• What you see with the onion skin off: hidden layers are left out (but kept in a layered file), ghosts never
  appear.
• The DPI goes into every format, and the color space, sRGB.
• Zoom, rotation and flip of the view have no effect.

## Which one
• For the web: PNG or WebP for drawings, JPEG or WebP at 85 to 90% for painted pictures.
• For a print shop: TIFF or PNG, made at 300 DPI («new»).
• To go on in another program: OpenRaster or PSD with layers.
• To keep your work: none of these. Save the document («saving»).

A small part of the picture goes to another program quicker over the clipboard: select, {copyMerged}, and paste
there.
)")};

} // namespace qirn::PaintHelp
