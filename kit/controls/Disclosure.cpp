#include "kit/controls/Disclosure.h"

#include "kit/QirnKit.h"
#include "kit/icons/Icons.h"

namespace qirn {

Disclosure::Disclosure(const QString& toOpen, const QString& toClose, QWidget* parent)
    : QToolButton(parent),
      toOpen_(toOpen),
      toClose_(toClose) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QirnKit::followMetrics(this, [this](const Metrics& m) { setIconSize({m.chevron, m.chevron}); });
    connect(this, &QToolButton::clicked, this, [this] {
        setOpen(!isOpen_);
        Q_EMIT turned(isOpen_);
    });
    setOpen(false);
}

void Disclosure::setOpen(bool open) {
    if (open == isOpen_) return;
    isOpen_ = open;
    setText(open ? toClose_ : toOpen_);
    setIcon(Icons::themed(open ? Icon::chevronDown : Icon::chevronRight));
}

} // namespace qirn
