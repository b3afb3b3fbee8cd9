#pragma once

class QPoint;
class QWidget;

namespace qirn {

class PaintModel;

/// The menu of the active layer's row, at a point of the screen. It lives until it closes; `list` is its parent.
void showLayerMenu(PaintModel& model, QWidget& list, const QPoint& at);

} // namespace qirn
