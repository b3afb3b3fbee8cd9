#include "shell/StatusItems.h"

#include <algorithm>

#include <QPainter>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {
constexpr int kMeterWidth = 60;
constexpr int kMeterHeight = 6;
} // namespace

StatusText::StatusText(const char* name, QWidget* parent) : QWidget(parent) {
    setObjectName(QLatin1String(name));
    setFont(ChromeFont::small());
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    hide(); // until it has a text
}

void StatusText::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    const int wide = fontMetrics().horizontalAdvance(text) + 1;
    if (wide > width_ || text.isEmpty()) {
        width_ = text.isEmpty() ? 0 : wide;
        updateGeometry();
    }
    update();
}

void StatusText::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, text_, QirnKitHost::colors().dim);
}

PressureMeter::PressureMeter(QWidget* parent) : QWidget(parent), label_(tr("Pressure")) {
    setObjectName(QStringLiteral("pressure"));
    setFont(ChromeFont::small());
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
    return {fontMetrics().horizontalAdvance(label_) + Metrics::kSpace8 + kMeterWidth, fontMetrics().height()};
}

void PressureMeter::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, label_, c.dim);
    QRectF bar(width() - kMeterWidth, (height() - kMeterHeight) / 2.0, kMeterWidth, kMeterHeight);
    ChromePaint::box(painter, bar, kMeterHeight / 2.0, c.well, c.edge);
    if (pressure_ <= 0) return;
    bar.setWidth(std::max<double>(kMeterHeight, kMeterWidth * std::min(pressure_, 1.0)));
    ChromePaint::box(painter, bar, kMeterHeight / 2.0, c.accent);
}

} // namespace qirn
