#pragma once
#include <QString>

namespace qirn::bench {

/// Every preset paints what a hand painted (a recording as PenRecording.h reads it), scaled to a 4K
/// canvas of five layers, the screen's image included. Prints milliseconds a pen point, of the best of three replays.
void measureHand(const QString& recording);

/// From a program's start to the first paint of its window, against an empty widget of the same size.
/// `program` is this one: it starts itself with the window to show as its argument.
void measureStart(const QString& program);
/// The started program's part: shows "studio" or "widget" and ends at its first paint.
int showFirstPaint(int argc, char** argv, const QString& window);

/// What a hand costs in the real window of 4K, on the display it is started on: milliseconds and repaints a pen point.
int measureWindow(int argc, char** argv, const QString& recording);

/// A hand in its own time on a 4K picture of five layers in the real window, with a safety copy each second and with none in
/// turn: milliseconds from when a point was due to when the display has it.
int measureCopies(int argc, char** argv, const QString& recording);

/// How long each action on a picture of 12,000 x 9,000 takes in the real window until the display shows it, and the first
/// look at a flat paper of 30,000 x 30,000.
int measureWaits(int argc, char** argv);

/// What another tool, color and active layer cost the main thread in the real window, with 200 layers and each panel.
int measureChoices(int argc, char** argv);

/// Memory of an open picture, what a huge canvas with a small drawing takes, what 500 undo steps take.
void measureCanvas();

} // namespace qirn::bench
