#include "shell/HudBubble.h"

#include <algorithm>

#include <QEvent>
#include <QPainter>

#include "app/model/PaintModel.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {
constexpr int kHeight = 32;
}

HudBubble::HudBubble(PaintModel& model, QWidget* canvas) : QWidget(canvas), model_(model) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    canvas->installEventFilter(this);
    connect(&model, &PaintModel::changed, this, &HudBubble::refresh);
    refresh();
}

QString HudBubble::text() const {
    return model_.hud().value_or(QString());
}

void HudBubble::refresh() {
    setVisible(model_.hud().has_value());
    if (!model_.hud()) return;
    setAccessibleName(text());
    const QWidget& canvas = *parentWidget();
    const int wanted = fontMetrics().horizontalAdvance(text()) + 2 * Metrics::kSpace16;
    const int wide = std::min(wanted, canvas.width() - 2 * Metrics::kSpace16);
    setGeometry((canvas.width() - wide) / 2, Metrics::kSpace16, wide, kHeight);
    update();
}

bool HudBubble::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) refresh();
    return QWidget::eventFilter(watched, event);
}

void HudBubble::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::box(painter, rect(), kHeight / 2.0, c.popup, c.edgeHover);
    ChromePaint::text(painter, QRectF(rect()).adjusted(Metrics::kSpace12, 0, -Metrics::kSpace12, 0),
                      Qt::AlignCenter, text(), c.text);
}

} // namespace qirn
