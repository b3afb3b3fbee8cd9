#pragma once
#include "app/canvas/PenInput.h"
#include "shell/preferences/pen/PenReading.h"
#include "shell/preferences/pen/PenTrace.h"

#include <optional>

#include <QWidget>

namespace qirn {

class PaintModel;

/// A field to draw in with pen or mouse, as wide as the pressure is after the preferences' curve.
class PenField : public QWidget {
    Q_OBJECT
public:
    PenField(PaintModel& model, QWidget* parent);

    const std::optional<PenReading>& reading() const { return reading_; } ///< Nothing before the first event.
    const EventRate& rate() const { return rate_; }
    bool isBlank() const { return blank_; }
    void clear();
    void forgetRate() { rate_.reset(); } ///< The pen rests: the next event begins a new count.

Q_SIGNALS:
    void moved();  ///< There is a new reading.
    void lifted(); ///< A line has ended.

protected:
    void tabletEvent(QTabletEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void penEvent(const QTabletEvent& event);
    void mouseEvent(const QMouseEvent& event);
    void follow(QEvent::Type type, const PenSample& sample, QPointF point, PenReading reading);
    void drawTo(QPointF point, const PenReading& reading);
    double now() const;

    PaintModel& model_;
    PenInput input_;
    SpeedPressure speed_;
    PenTrace trace_;
    EventRate rate_;
    std::optional<PenReading> reading_;
    bool blank_ = true;
    struct End {
        QPointF point;                // device pixels of the field, y down
        std::optional<double> radius; // nothing until the mouse's speed tells it
    };
    std::optional<End> end_; // of the line in progress
};

} // namespace qirn
