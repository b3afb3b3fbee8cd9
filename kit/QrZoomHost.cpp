#include "kit/QrZoomHost.h"

#include "kit/QirnKit.h"

#include <QKeyEvent>
#include <QLayout>
#include <QScrollBar>
#include <QTimer>

namespace qirn {

QrZoomHost::QrZoomHost(QWidget* content, QSize minSize) : minSize_(minSize) {
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        setMinSize(minSize_);
        if (zoom_ == m.zoom) return;
        zoom_ = m.zoom;
        QTimer::singleShot(0, this, &QrZoomHost::scrollHome); // behind the layout, which is queued by now
    });
}

void QrZoomHost::setMinSize(QSize minSize) {
    const Metrics& m = QirnKitHost::metrics();
    minSize_ = minSize;
    const QSize words = minSize.isNull() ? QSize() : widget()->layout()->minimumSize();
    widget()->setMinimumSize(words.expandedTo({m.px(minSize.width()), m.px(minSize.height())}));
}

bool QrZoomHost::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) setMinSize(minSize_);
    return QScrollArea::eventFilter(watched, event);
}

void QrZoomHost::scrollHome() {
    horizontalScrollBar()->setValue(horizontalScrollBar()->minimum());
    verticalScrollBar()->setValue(0);
}

void QrZoomHost::keyPressEvent(QKeyEvent* event) {
    event->ignore();
}

} // namespace qirn
