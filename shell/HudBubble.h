#pragma once
#include <QWidget>

namespace qirn {

class PaintModel;

/// The model's transient message in a bubble at the top of the canvas; it takes no events.
class HudBubble : public QWidget {
    Q_OBJECT
public:
    HudBubble(PaintModel& model, QWidget* canvas);

    QString text() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    PaintModel& model_;
};

} // namespace qirn
