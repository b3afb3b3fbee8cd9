#pragma once
#include <functional>

#include <QWidget>

namespace qirn {

/// The line along a part of the window that makes it wider or higher: by a drag, or with the keyboard by the arrow keys.
class SplitGrip : public QWidget {
    Q_OBJECT
public:
    struct Size {
        std::function<int()> get;       ///< Width or height of the part, in logical pixels.
        std::function<void(int)> set;   ///< Of any size; the part keeps its limits.
        std::function<void()> finished; ///< After a drag or a key.
    };
    /// `edge` is the one of the part that the grip lies at: left or bottom.
    SplitGrip(Qt::Edge edge, const QString& name, const Size& size, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool isUpright() const { return edge_ == Qt::LeftEdge; }
    double place(const QMouseEvent& event) const; ///< On the screen, growing with the part.

    Qt::Edge edge_;
    Size size_;
    bool dragging_ = false;
    double pressed_ = 0; // place and size at the press
    int sizeThen_ = 0;
};

} // namespace qirn
