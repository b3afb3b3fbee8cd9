#pragma once
#include "app/canvas/PenInput.h"
#include "app/model/choices/Tool.h"

#include <array>
#include <memory>

#include <QPointF>
#include <QString>

namespace qirn {

class CanvasView;
class DocSession;
class PaintDocument;
class PaintModel;

/// The press that a gesture begins with, and what the gesture may use: it ends before any of them goes.
struct ToolPress {
    CanvasView& canvas;
    PaintModel& model;
    DocSession& session; ///< The one on the canvas.
    Tool tool;           ///< The gesture's until its end; the model's may be another one by then.
    bool isLent;         ///< A key or a button gave the tool for this one gesture.
    PenSample sample;
    QPointF point; ///< Canvas.

    PaintDocument& doc() const;
    bool refusesLockedLayer() const;        ///< True, and said to the user, when the active layer is locked.
    void commit(const QString& name) const; ///< Makes one undo step of what was changed, and shows it.
    void commit() const;                    ///< Named as in the tool's row.
    double logicalLength(QPointF canvasVector) const; ///< In logical points on screen.
    double logicalPoint() const;                      ///< One of them in canvas pixels.
};

/// A tool's gesture on the canvas, from the press that made it to its release. It alone has the state of its drag. Who drops
/// it puts back the pixels that it changed and did not commit; the view stays as it is.
class CanvasTool {
public:
    explicit CanvasTool(const ToolPress& press) : press_(press) {}
    virtual ~CanvasTool() = default;
    CanvasTool(const CanvasTool&) = delete;
    CanvasTool& operator=(const CanvasTool&) = delete;

    virtual void drag(const PenSample&, QPointF /*canvasPoint*/) {}
    virtual void release(const PenSample&, QPointF /*canvasPoint*/) {} ///< The last call.
    /// In place of the release; one of the functions above may be running. It paints no more.
    virtual void drop() {}

protected:
    const ToolPress press_;
};

/// What a press of a tool begins: null where the press was all, or was refused in words.
struct ToolEntry {
    Tool tool;
    std::unique_ptr<CanvasTool> (*press)(const ToolPress& press);
};
using ToolTable = std::array<ToolEntry, kToolCount>; ///< In the order of `Tool`.

} // namespace qirn
