#include "app/canvas/CanvasTool.h"

#include "app/canvas/CanvasView.h"
#include "app/files/DocSession.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"

#include <algorithm>
#include <cmath>

namespace qirn {

PaintDocument& ToolPress::doc() const {
    return session.doc();
}

bool ToolPress::refusesLockedLayer() const {
    if (!doc().activeLayer().isLocked) return false;
    model.messages().flash(CanvasView::tr("The layer is locked"));
    return true;
}

void ToolPress::commit(const QString& name) const {
    doc().commit(name);
    model.afterChange(session);
}

void ToolPress::commit() const {
    commit(undoNameOf(tool));
}

double ToolPress::logicalLength(QPointF canvasVector) const {
    return std::hypot(canvasVector.x(), canvasVector.y()) * session.view.zoom / canvas.devicePixelRatioF();
}

double ToolPress::logicalPoint() const {
    return canvas.devicePixelRatioF() / std::max(session.view.zoom, kMinZoom);
}

} // namespace qirn
