#include "shell/help/topics/Topics.h"

namespace qirn::PaintHelp {

const TopicText kShapes{"shapes", QIRN_HELP("Shapes tool"),
                        QIRN_HELP("shape, rectangle, circle, ellipse, line, arrow, star, polygon, hexagon"),
                        QIRN_HELP(R"(
The Shapes tool ({shape}) draws one shape with each drag, on the active layer. Its outline shows while you drag;
when you let go it becomes pixels.

## The shapes
Rectangle, Rounded Rectangle, Ellipse, Line, Arrow, Star and Hexagon, in the menu of the options bar.

## The options
• Fill: the inside, in the paint color.
• Outline: the edge. In the second color when Fill is on as well, otherwise in the paint color.
• Line width, 1 to 100 px: of the outline, and of Line and Arrow. The head of an arrow grows with it.

A Line or an Arrow has no inside; it is always drawn, in the paint color, whatever the switches say. For the
others at least one of Fill and Outline must be on.

## Keys
• Hold ⇧ for a square, a circle, a regular star or hexagon, and for lines in steps of 45°.
• Hold ⌘ and click to pick a color.
• Esc while you drag drops the shape.

## Good to know
Each shape is one undo step with the shape's name. It goes where the active layer is: make a new layer first
({newLayer}) if you want to move it about afterwards with «transform». A selection cuts it off at its edge.
)")};

} // namespace qirn::PaintHelp
