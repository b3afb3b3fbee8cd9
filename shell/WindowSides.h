#pragma once
#include <optional>
#include <vector>

#include <QObject>
#include <QTimer>

class QMainWindow;
class QWidget;

namespace qirn {

class CanvasView;
class PaintModel;
class QrZoomHost;

/// The sides of a window round its canvas. "Hide Panels" takes some of them away, full screen all. The pointer at rest at
/// an edge of the canvas brings the side there back until it leaves it again; the picture stays where it is on screen.
/// Nothing comes while a button or the pen is down.
class WindowSides : public QObject {
    Q_OBJECT
public:
    enum class HiddenWith { panels, fullScreen };
    struct Side {
        QWidget* widget;
        Qt::Edge edge; ///< Of the window; what has the same edge comes together.
        HiddenWith hiddenWith;
    };

    /// Belongs to the window, whose parts the others are; the model is borrowed. The content asks for no room while the
    /// canvas is alone.
    WindowSides(PaintModel& model, QMainWindow& window, QrZoomHost& content, CanvasView& canvas,
                std::vector<Side> sides);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followWindow();               ///< Into full screen, which begins without panels, and out of it.
    void pointerMoved(QPointF canvas); ///< With nothing pressed; logical pixels of the canvas.
    void bringBack(std::optional<Qt::Edge> edge);
    bool isTaken(const Side& side) const; ///< Hidden but where the pointer brings it back.
    void show();                          ///< The sides that are to be there, and no others.

    PaintModel& model_;
    QMainWindow& window_;
    QrZoomHost& content_;
    CanvasView& canvas_;
    std::vector<Side> sides_;
    std::optional<Qt::Edge> broughtBack_;
    std::optional<Qt::Edge> edge_; // that the pointer is at
    QTimer rest_;                  // single shot: the pointer has come to the edge
    bool wasFullScreen_ = false;
    bool hadPanels_ = true; // before full screen
};

} // namespace qirn
