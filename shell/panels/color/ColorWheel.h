#pragma once
#include "shell/panels/color/HueColor.h"

#include <QImage>
#include <QWidget>

namespace qirn {

class WheelPart;

/// A ring of hues round a square of saturation (across) and brightness (upward). A drag stays with the part where it
/// began. For the keyboard and a screen reader the two parts are controls of their own.
class ColorWheel : public QWidget {
    Q_OBJECT
public:
    explicit ColorWheel(QWidget* parent);

    const HueColor& color() const { return color_; }
    void setColor(const HueColor& color); ///< Emits nothing.
    void choose(const HueColor& color);   ///< As the user would: brings it into the range and emits.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void changed(); ///< By the user.

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Mode { idle, ring, square };
    QRectF wheel() const; ///< The square that the ring fills, in the middle of the widget.
    double innerRadius() const;
    QRectF square() const;
    void drag(QPointF position);
    void drawMark(QPainter& painter, QPointF center, const QColor& inside) const;

    HueColor color_;
    Mode mode_ = Mode::idle;
    WheelPart* hue_;
    WheelPart* tone_;  // inside `hue_`
    QImage ringImage_; // each of the size last drawn; that of the tones of one hue
    QImage toneImage_;
    double toneHue_ = -1;
};

} // namespace qirn
