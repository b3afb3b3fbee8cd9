#pragma once
#include <QToolButton>

#include "Icons.h"

namespace qirn {

/// A flat round icon button, as the tools stand in their rail.
class RoundButton : public QToolButton {
    Q_OBJECT
public:
    RoundButton(Icon icon, const QString& tip, QWidget* parent);

    QSize sizeHint() const override;
};

} // namespace qirn
