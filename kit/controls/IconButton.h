#pragma once
#include <QToolButton>

#include "kit/Metrics.h"
#include "kit/icons/Icons.h"

namespace qirn {

/// A flat button of one icon. Its tip is also its accessible name; a click does not take the focus.
class IconButton : public QToolButton {
    Q_OBJECT
public:
    IconButton(Icon icon, const QString& tip, QWidget* parent, int Metrics::*iconSide = &Metrics::icon);

    void setTip(const QString& tip);
};

} // namespace qirn
