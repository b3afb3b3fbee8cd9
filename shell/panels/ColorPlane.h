#pragma once
#include <QImage>
#include <QWidget>

namespace qirn {

/// A hue, with saturation and value: fractions of 1.
struct HueColor {
    double h = 0;
    double s = 0;
    double v = 0;

    bool operator==(const HueColor&) const = default;
};

/// A square of saturation (across) and brightness (upward) for one hue, above a strip of hues. A drag stays with the
/// part where it began. Arrow keys move in the square, Page Up and Page Down along the strip.
class ColorPlane : public QWidget {
    Q_OBJECT
public:
    explicit ColorPlane(QWidget* parent);

    const HueColor& color() const { return color_; }
    void setColor(const HueColor& color); ///< Emits nothing.

    QSize sizeHint() const override;

Q_SIGNALS:
    void changed(); ///< By the user.

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Part { none, square, strip };
    QRectF square() const;
    QRectF strip() const;
    void drag(QPointF position);
    void moveTo(const HueColor& color);
    const QImage& squareImage(QSize pixels);

    HueColor color_;
    Part dragged_ = Part::none;
    QImage squareImage_; // rendered for imageHue_
    double imageHue_ = -1;
};

} // namespace qirn
