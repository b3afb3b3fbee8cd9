#include "shell/StatusItems.h"

#include <algorithm>

#include <QPainter>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {

/// The bar that the pressure fills.
QSize meterSize() {
    const Metrics& m = QirnKitHost::metrics();
    return {m.px(60), m.px(6)};
}

} // namespace

StatusText::StatusText(const char* name, QWidget* parent) : QWidget(parent) {
    setObjectName(QLatin1String(name));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    QirnKit::followMetrics(this, [this](const Metrics&) {
        setFont(ChromeFont::small());
        width_ = textWidth();
    });
    hide(); // until it has a text
}

void StatusText::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    if (textWidth() > width_ || text.isEmpty()) {
        width_ = textWidth();
        updateGeometry();
    }
    update();
}

int StatusText::textWidth() const {
    return text_.isEmpty() ? 0 : fontMetrics().horizontalAdvance(text_) + 1;
}

void StatusText::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, text_, QirnKitHost::colors().dim);
}

PressureMeter::PressureMeter(QWidget* parent) : QWidget(parent), label_(tr("Pressure")) {
    setObjectName(QStringLiteral("pressure"));
    QirnKit::followMetrics(this, [this](const Metrics&) { setFont(ChromeFont::small()); });
    setAccessibleName(label_);
    setToolTip(tr("Pen pressure from your graphics tablet (a mouse always shows full pressure)"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

void PressureMeter::setPressure(double pressure) {
    if (pressure == pressure_) return;
    pressure_ = pressure;
    update();
}

QSize PressureMeter::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {fontMetrics().horizontalAdvance(label_) + m.gap + meterSize().width(), fontMetrics().height()};
}

void PressureMeter::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, label_, c.dim);
    QRectF bar(QPointF(), meterSize());
    bar.moveTopLeft({width() - bar.width(), (height() - bar.height()) / 2});
    const double radius = bar.height() / 2;
    ChromePaint::box(painter, bar, radius, c.well, c.edge);
    if (pressure_ <= 0) return;
    bar.setWidth(std::max(bar.height(), bar.width() * std::min(pressure_, 1.0)));
    ChromePaint::box(painter, bar, radius, c.accent);
}

} // namespace qirn
