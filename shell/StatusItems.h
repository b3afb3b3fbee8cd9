#pragma once
#include <QWidget>

namespace qirn {

/// One text of the status bar. It stays as wide as its widest text so far, so that the texts behind it stand still
/// while numbers change.
class StatusText : public QWidget {
    Q_OBJECT
public:
    StatusText(const char* name, QWidget* parent);

    void setText(const QString& text); ///< An empty text takes no room.
    const QString& text() const { return text_; }

    QSize sizeHint() const override { return {width_, fontMetrics().height()}; }
    QSize minimumSizeHint() const override { return {0, fontMetrics().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int textWidth() const; ///< Of the text now; 0 of none.

    QString text_;
    int width_ = 0;
};

/// A labelled bar that the pen's pressure fills.
class PressureMeter : public QWidget {
    Q_OBJECT
public:
    explicit PressureMeter(QWidget* parent);

    void setPressure(double pressure); ///< 0 to 1.
    double pressure() const { return pressure_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label_;
    double pressure_ = 0;
};

} // namespace qirn
