#pragma once
#include <QCheckBox>
#include <QVariantAnimation>

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

private:
    QVariantAnimation
        knob_; // how far it is still from its place, as a part of its way; by user's changes only
};

} // namespace qirn
