#pragma once
#include <QToolButton>

namespace qirn {

class PaintModel;

/// Tells the zoom of the interface, and opens the list of its levels.
class ZoomButton : public QToolButton {
    Q_OBJECT
public:
    ZoomButton(PaintModel& model, QWidget* parent); ///< Borrows the model.
};

} // namespace qirn
