#pragma once
#include <QAbstractButton>
#include <QWidget>

namespace qirn {

class IconButton;
class PaintModel;

/// A square of one color that can be clicked.
class ColorSquare : public QAbstractButton {
    Q_OBJECT
public:
    ColorSquare(const QString& tip, QWidget* parent);

    void showColor(const QColor& color);
    QColor color() const { return color_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_;
};

/// The paint color before the second color, and the buttons that exchange and reset them. A press on the paint color
/// shows its panel.
class ColorWells : public QWidget {
    Q_OBJECT
public:
    ColorWells(PaintModel& model, QWidget* parent);

private:
    void refresh();

    PaintModel& model_;
    ColorSquare* secondary_;
    ColorSquare* primary_;
};

} // namespace qirn
