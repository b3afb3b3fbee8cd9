#include "shell/StatusItems.h"

#include <algorithm>

#include <QPainter>
#include <QRegularExpression>

#include "app/desktop/HostWords.h"
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

StatusText::StatusText(const char* name, GivesWay givesWay, QWidget* parent)
    : QWidget(parent),
      givesWay_(givesWay) {
    setObjectName(QLatin1String(name));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    QirnKit::followMetrics(this, [this](const Metrics&) {
        setFont(ChromeFont::small());
        width_ = neededWidth();
    });
    hide(); // until it has a text
}

void StatusText::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleName(text);
    setVisible(hasRoom_ && !text.isEmpty());
    const int needed = neededWidth();
    if (needed > width_ || text.isEmpty() || givesWay_ == GivesWay::yes) {
        width_ = needed;
        updateGeometry();
    }
    setToolTip(givesWay_ == GivesWay::yes ? plainTip(text) : QString());
    update();
}

void StatusText::setRoom(bool isThere) {
    hasRoom_ = isThere;
    setVisible(hasRoom_ && !text_.isEmpty());
}

void StatusText::setWidest(const QString& widest) {
    static const QRegularExpression digit(QStringLiteral("\\d"));
    QString zeros = widest;
    zeros.replace(digit, QStringLiteral("0"));
    if (zeros == widest_) return;
    widest_ = zeros;
    width_ = neededWidth();
    updateGeometry();
}

int StatusText::neededWidth() const {
    const auto wide = [this](const QString& text) { return fontMetrics().horizontalAdvance(text) + 1; };
    return text_.isEmpty() ? 0 : std::max(wide(text_), wide(widest_));
}

QSize StatusText::minimumSizeHint() const {
    const int least = QirnKitHost::metrics().leastButton;
    return {givesWay_ == GivesWay::yes ? std::min(width_, least) : width_, fontMetrics().height()};
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
    bar = ChromePaint::visual(rect(), bar);
    const double radius = bar.height() / 2;
    ChromePaint::box(painter, bar, radius, c.well, c.edge);
    if (pressure_ <= 0) return;
    QRectF filled = bar;
    filled.setWidth(std::max(bar.height(), bar.width() * std::min(pressure_, 1.0)));
    ChromePaint::box(painter, ChromePaint::visual(bar, filled), radius, c.focus);
}

} // namespace qirn
