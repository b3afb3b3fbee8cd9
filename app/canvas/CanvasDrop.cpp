// Files and pictures that are dropped on the canvas.
#include "app/canvas/CanvasView.h"

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

/// Whatever it is: what is of no use here is refused in words when it is dropped.
void CanvasView::dragged(QDragMoveEvent* event) {
    takeCopy(*event, true);
}

void CanvasView::dropped(QDropEvent* event) {
    takeCopy(*event, model_.clipboard().drop(*event->mimeData()));
}

} // namespace qirn
