#pragma once
#include <QCheckBox>
#include <QVariantAnimation>

namespace qirn {

/// A switch with its label. It is pressed, checked and read out as a check box is.
class ChromeToggle : public QCheckBox {
    Q_OBJECT
public:
    ChromeToggle(const QString& label, QWidget* parent);

    void setWraps();   ///< Where it is narrow its label takes more lines, instead of asking for more room.
    void setCompact(); ///< With small letters close by, for several in the width of a column.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    int labelLeft() const;

    bool wraps_ = false;
    bool compact_ = false;
    QVariantAnimation
        knob_; // how far it is still from its place, as a part of its way; by user's changes only
};

} // namespace qirn
