#pragma once
#include <QCheckBox>

namespace qirn {

/// A switch with its label. It is pressed, checked and read out as a check box is.
class ChromeToggle : public QCheckBox {
    Q_OBJECT
public:
    ChromeToggle(const QString& label, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
};

} // namespace qirn
