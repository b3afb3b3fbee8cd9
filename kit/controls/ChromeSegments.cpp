#include "kit/controls/ChromeSegments.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeSegments::ChromeSegments(const QString& accessibleName, const QStringList& titles, QWidget* parent)
    : QWidget(parent),
      buttons_(new QButtonGroup(this)) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setSpacing(0);
    for (const QString& title : titles) {
        auto* button = new QToolButton(this);
        button->setText(title);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setAutoRaise(true);
        button->setCheckable(true);
        button->setAutoExclusive(true); // one of them, for a reader as well
        button->setFocusPolicy(Qt::TabFocus);
        button->setAccessibleName(accessibleName + u' ' + title);
        button->setObjectName(button->accessibleName());
        buttons_->addButton(button, static_cast<int>(buttons_->buttons().size()));
        row->addWidget(button);
    }
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        row->setContentsMargins(m.inset, m.inset, m.inset, m.inset);
        for (QAbstractButton* button : buttons_->buttons())
            button->setFixedHeight(m.controlHeight - 2 * m.inset);
    });
    connect(buttons_, &QButtonGroup::idClicked, this, &ChromeSegments::picked);
}

int ChromeSegments::chosen() const {
    return buttons_->checkedId();
}

void ChromeSegments::setChosen(int index) {
    if (QAbstractButton* button = buttons_->button(index)) button->setChecked(true);
}

void ChromeSegments::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::box(painter, rect(), m.radius, c.well, isEnabled() ? c.edge : c.divider);
}

} // namespace qirn
