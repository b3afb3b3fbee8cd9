#pragma once
#include <QWidget>

namespace qirn {

/// One text of the status bar. It stays as wide as its widest text so far and as the one it is told of, so that the texts
/// behind it stand still while numbers change.
class StatusText : public QWidget {
    Q_OBJECT
public:
    enum class GivesWay { no, yes }; ///< With an ellipsis, where there is no room.
    StatusText(const char* name, GivesWay givesWay, QWidget* parent);

    void setText(const QString& text); ///< An empty text takes no room.
    void
    setWidest(const QString& widest); ///< Of the texts that are to come; each of its digits counts as a 0.
    void setRoom(bool isThere);       ///< Without room it is not shown.
    const QString& text() const { return text_; }

    QSize sizeHint() const override { return {width_, fontMetrics().height()}; }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int neededWidth() const; ///< 0 without a text.

    GivesWay givesWay_;
    QString text_;
    QString widest_;
    bool hasRoom_ = true;
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
