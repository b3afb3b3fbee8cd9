#pragma once
#include "kit/controls/IconButton.h"

namespace qirn {

/// A flat round icon button, as the tools stand in their rail.
class RoundButton : public IconButton {
    Q_OBJECT
public:
    using IconButton::IconButton;

    QSize sizeHint() const override;
};

} // namespace qirn
