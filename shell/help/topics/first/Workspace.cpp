#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kWorkspace{"workspace", QIRN_HELP("The workspace tour"),
                           QIRN_HELP("panels, toolbar, layout, interface, where"), QIRN_HELP(R"(
The window has six parts. From top to bottom: the menus, the header, the options of the tool, the picture
between tools and panels, and the status bar.

## The header
• The badge, then one tab for each open picture. A dot on a tab means that the picture has changes that are not
  saved yet. A click on a tab shows its picture, with its own zoom and its own undo steps; the × closes it, and
  so does the middle mouse button. The tip of a tab tells where its file lies. Where the tabs do not fit, a list
  at their end has them all. View → Next Picture ({nextPicture}) and View → Previous Picture ({previousPicture})
  go from one to the other.
• The + button opens the sheet for a new canvas.
• Buttons to open, save and export, to undo and redo, and the question mark, which opens this help.
• The small button that reads 100% changes the size of the interface; see «look».

## The tools
From top to bottom: Brush, Eraser, Smudge, Blur, Bucket Fill, Gradient, Eyedropper, Rectangle Select, Ellipse
Select, Lasso Select, Move & Transform, Shapes, Text, Hand (Pan) and Zoom. Each has a key of one letter, which
its tip names. Below them lie the two colors: the large square is the paint color, the one behind it the second
color. Click the paint color to see it in the Color tab, click the second color to swap the two. The two small
buttons swap them as well, and set them to black and white.

## The options bar
It shows the title of the tool in hand, a question mark that opens the tool's page in this help, and the
settings that you change most. While pixels are being transformed it shows the transform's controls instead, and
for Hand and Zoom those of the view.

## The picture
Squares of light and dark gray show where the picture is transparent. The gray around it is neutral on purpose,
so that it does not change how you see color. Messages of the program appear for a moment in a small bubble at
the top.

## The panels
• Color (View → Color Panel, {colorPanel}): the wheel, sliders, hex field, recent colors and the current
  palette. See «color».
• Brush (View → Brush Panel, {brushPanel}): the presets of the tool in hand with a picture of their stroke, and every setting of a
  brush. See «brush-settings».
• Palettes (View → Palettes Panel, {palettesPanel}): the palette library, and import and export. See «palettes».
• Layers, always below: the stack, blend modes, opacity, locks and the onion skin. See «layers».

Drag the line between picture and panels to make the panels wider or narrower.

## The status bar
It tells the size and DPI of the picture, the zoom, a rotated or flipped view, where the pointer is, the
pressure of the pen, the active layer, how many steps can be undone, and when the picture was last copied to
safety. View → Show Stroke Performance adds how long the last stroke took.

## More room
• Tab on the canvas hides the panels, the tools and the options, and shows them again: View → Hide Panels and
  View → Show Panels.
• {fullScreen} is View → Full Screen. While panels are hidden, move the pointer to an edge of the window to have
  that side back for a moment.

## Help
Help → Qirn Paint Help ({help}) opens this help at the page of the tool in hand, or of the sheet that is up.
Help → Keyboard Shortcuts and Help → Quick Start open those two pages, Help → About Qirn Paint tells the
version. Type in the field above the list of pages to search in all of them: every word that you type has to be
on a page.

## By keyboard
• F6 goes from one part of the window to the next, Shift+F6 back; Tab goes from control to control inside it.
• Space presses a button or turns a switch, the arrow keys move a slider, Return opens the field of its value,
  where you type a number. Esc gives the keys back to the picture.
)")};

} // namespace qirn::PaintHelp
