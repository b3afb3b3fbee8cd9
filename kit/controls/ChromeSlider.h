#pragma once
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "kit/controls/NumberFormat.h"

class QLineEdit;

namespace qirn {

/// A slider in one row: its label, its value and its level share one bar.
///
/// Press or drag along it to set the value (with Shift a tenth as fast), turn the wheel, use the arrow and page keys, Home
/// and End. A double click, Return, or a digit opens a field to type a number into; Return takes it, Escape leaves the
/// value as it was. A double click takes back what its first press has set.
///
/// A value beyond the range is told as it is, with the level at its end; the user sets none beyond it.
class ChromeSlider : public QWidget {
    Q_OBJECT
public:
    ChromeSlider(const QString& label, const SliderScale& scale, const NumberFormat& format, QWidget* parent);

    double value() const { return value_; }
    void setValue(double value); ///< Emits nothing.
    QString label() const { return label_; }
    const SliderScale& scale() const { return scale_; }
    QString valueText() const { return format_.text(value_); }
    bool isDragging() const { return dragging_; }

    /// Sets it, or the nearer end of the range, as the user would: emits both signals.
    void enter(double value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void valueChanged(double value); ///< By the user, also while a drag goes on.
    /// After changes by the user: at the end of a drag, with a typed number, when keys or wheel have paused, when a click
    /// can be no double click any more. After a double click the value is the one from before it.
    void editingFinished();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void moveTo(double value);
    void show(double value); ///< Announced, whatever the range.
    void step(int steps);    ///< By keys or wheel: finished when they pause.
    void finish();
    void drag(const QMouseEvent& event);
    void openField(const QString& text);
    void closeField(bool take);
    int valueWidth() const; ///< Of the widest text that the range can show.
    QRect fieldRect() const;
    void paintLevel(QPainter& painter, const QRectF& bar) const;

    QString label_;
    SliderScale scale_;
    NumberFormat format_;
    double value_ = 0;
    double valueBefore_ = 0; // the latest press
    double pressX_ = 0;
    bool dragging_ = false;
    double dragPlace_ = 0; // along the bar, 0 to 1, not rounded to the step
    double dragX_ = 0;
    int wheel_ = 0;          // angle that makes no whole notch yet, in eighths of a degree
    bool announced_ = false; // valueChanged was emitted, editingFinished not yet
    QTimer atRest_;
    QLineEdit* field_; // open while visible
    QPointer<QWidget> focusBefore_;
};

} // namespace qirn
