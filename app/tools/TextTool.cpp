// Text: a press asks for the words that go there.
#include "app/canvas/CanvasView.h"
#include "app/tools/ToolTable.h"

namespace qirn {

std::unique_ptr<CanvasTool> pressText(const ToolPress& press) {
    // Queued: with a dialog inside it, Qt would send the pen's press again.
    CanvasView& canvas = press.canvas;
    QMetaObject::invokeMethod(
        &canvas, [&canvas, point = press.point] { Q_EMIT canvas.textRequested(point); },
        Qt::QueuedConnection);
    return nullptr;
}

} // namespace qirn
