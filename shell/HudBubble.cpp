#include "shell/HudBubble.h"

#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>

#include <QAccessible>
#include <QEvent>
#include <QPainter>

namespace qirn {

HudBubble::HudBubble(PaintModel& model, QWidget* canvas) : QWidget(canvas), model_(model) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    canvas->installEventFilter(this);
    connect(&model, &PaintModel::changed, this, &HudBubble::refresh);
    QirnKit::followMetrics(this, [this](const Metrics&) { refresh(); });
}

QString HudBubble::text() const {
    return model_.messages().hud().value_or(QString());
}

void HudBubble::refresh() {
    const Metrics& m = QirnKitHost::metrics();
    setVisible(model_.messages().hud().has_value());
    if (!model_.messages().hud()) return setAccessibleName({}); // the same words are news again later
    if (accessibleName() != text()) {
        setAccessibleName(text());
        QAccessibleEvent event(this, QAccessible::ObjectShow); // a reader says a notification that comes up
        QAccessible::updateAccessibility(&event);
    }
    const QWidget& canvas = *parentWidget();
    const int wanted = fontMetrics().horizontalAdvance(text()) + 2 * m.margin;
    const int wide = std::min(wanted, canvas.width() - 2 * m.margin);
    setGeometry((canvas.width() - wide) / 2, m.margin, wide, m.px(32));
    update();
}

bool HudBubble::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) refresh();
    return QWidget::eventFilter(watched, event);
}

void HudBubble::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::box(painter, rect(), height() / 2.0, c.popup, c.edge);
    ChromePaint::text(painter, QRectF(rect()).adjusted(m.groupGap, 0, -m.groupGap, 0), Qt::AlignCenter,
                      text(), c.text);
}

} // namespace qirn
