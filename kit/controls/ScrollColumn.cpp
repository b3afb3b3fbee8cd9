#include "kit/controls/ScrollColumn.h"

#include <QKeyEvent>
#include <QScrollBar>

#include "kit/QirnKit.h"

namespace qirn {

namespace {
constexpr int kLeastRows = 5; // in fewer nobody finds his way
} // namespace

ScrollColumn::ScrollColumn(QWidget* column, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(column);
    column->setAutoFillBackground(false); // what stands behind it shows
    viewport()->setAutoFillBackground(false);
}

QSize ScrollColumn::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(),
            kLeastRows * QirnKitHost::metrics().rowHeight};
}

bool ScrollColumn::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) updateGeometry(); // the column may need another width
    return QScrollArea::eventFilter(watched, event);
}

void ScrollColumn::keyPressEvent(QKeyEvent* event) {
    event->ignore(); // arrow keys are for the control that has the focus, or for the window
}

} // namespace qirn
