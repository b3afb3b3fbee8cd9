#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kNew{"new", QIRN_HELP("New canvas, sizes and DPI"),
                     QIRN_HELP("size, preset, dpi, print, resolution, inches, pixels, a4, letter, canvas"),
                     QIRN_HELP(R"(
File → New Canvas… ({newCanvas}), or the + button in the header, opens the sheet New Canvas.

## Pick a size
On the left are 25 sizes in three groups:
• Screen: HD 1080p, QHD 1440p, 4K UHD, 5K desktop, iPad Pro 12.9", Phone wallpaper.
• Social & Music: Square post, Portrait post 4:5, Story / Reel 9:16, Video thumbnail, Banner header 3:1, Album
  cover.
• Print (300 DPI): Letter, Legal and Tabloid; A5, A4 and A3; photos of 4 × 6, 5 × 7 and 8 × 10 inches; prints
  and posters of 11 × 14, 12 × 18 and 18 × 24 inches; and a business card.

A size for print switches the units to inches, the others to pixels.

## Or type your own
On the right, under Custom:
• Name is what the tab shows. As long as you have not typed a name of your own, choosing a size names the
  picture after it.
• Width and Height are in the chosen Units: Pixels, Inches, Centimeters or Millimeters. Changing the units keeps
  the size in pixels.
• Swap width ↔ height turns portrait into landscape.
• DPI is how many pixels go on an inch when the picture is printed.
• Background is White, Transparent, Second color or Black. With anything but Transparent the picture begins with
  a layer named Background of that color and an empty layer to paint on.

The line below tells the size in pixels and megapixels. Width and height must be 1 to 30,000 pixels. Above 60
megapixels the sheet warns how much memory each layer can take; you may go on.

## What DPI means
A screen shows pixels and does not look at DPI. A printer does: 3000 pixels at 300 DPI print 10 inches wide,
sharp. For print choose 300; for the screen the pixels are all that counts. «image» tells how to change the DPI
later.

## The first picture
The program starts with one untouched picture named Untitled, 1920 × 1080 pixels. A picture that you open or
create takes its place; as soon as you have painted on it, it stays. Preferences can make new canvases start
transparent: «prefs».
)")};

} // namespace qirn::PaintHelp
