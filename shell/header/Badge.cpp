#include "shell/header/Badge.h"

#include <QPainter>

#include "kit/ChromeFont.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {

// The product's name, the same in every language.
const QString kFirst = QStringLiteral("Qirn");
const QString kSecond = QStringLiteral("PAINT");

QFont secondFont() {
    QFont font = ChromeFont::caption();
    font.setWeight(QFont::DemiBold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.6 * QirnKitHost::metrics().zoom);
    return font;
}

} // namespace

Badge::Badge(QWidget* parent) : QWidget(parent) {
    setAccessibleName(kFirst + u' ' + kSecond);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

QSize Badge::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int first = QFontMetrics(ChromeFont::title()).horizontalAdvance(kFirst);
    return {first + m.gap + QFontMetrics(secondFont()).horizontalAdvance(kSecond) + m.groupGap,
            m.controlHeight};
}

void Badge::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    painter.setFont(ChromeFont::title());
    const QFontMetrics title = painter.fontMetrics();
    const int baseline = (height() + title.capHeight()) / 2; // both words stand on one line
    painter.setPen(c.text);
    painter.drawText(0, baseline, kFirst);
    painter.setFont(secondFont());
    painter.setPen(c.dim);
    painter.drawText(title.horizontalAdvance(kFirst) + m.gap - m.px(1), baseline, kSecond);
}

} // namespace qirn
