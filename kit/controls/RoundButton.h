#pragma once
#include "kit/controls/IconButton.h"

namespace qirn {

/// A flat round icon button, as the tools stand in their rail. In a low column it gets smaller.
class RoundButton : public IconButton {
    Q_OBJECT
public:
    RoundButton(Icon icon, const QString& tip, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
};

} // namespace qirn
