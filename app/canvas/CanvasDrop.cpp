// Files and pictures that are dropped on the canvas.
#include "app/canvas/CanvasView.h"

#include "app/files/PictureExchange.h"
#include "app/model/Clipboard.h"
#include "app/model/PaintModel.h"

#include <QDropEvent>

namespace qirn {

namespace {

/// Always a copy, whatever the source proposes: a move would have it delete its file.
void takeCopy(QDropEvent& event, bool take) {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(take);
}

} // namespace

void CanvasView::dragEnterEvent(QDragEnterEvent* event) {
    enter(&CanvasView::dragged, event);
}

void CanvasView::dragged(QDragMoveEvent* event) {
    takeCopy(*event, PictureExchange::mayHoldPicture(*event->mimeData()));
}

void CanvasView::dropped(QDropEvent* event) {
    takeCopy(*event, model_.clipboard().drop(*event->mimeData()));
}

} // namespace qirn
