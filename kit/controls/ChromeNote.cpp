#include "kit/controls/ChromeNote.h"

#include <QPainter>

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeNote::ChromeNote(const QString& text, QWidget* parent) : QWidget(parent), text_(text) {
    QirnKit::followMetrics(this, [this](const Metrics&) { setFont(ChromeFont::small()); });
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

QSize ChromeNote::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text_) + 1, fontMetrics().height()};
}

void ChromeNote::resizeEvent(QResizeEvent*) {
    setToolTip(width() < sizeHint().width() ? text_ : QString());
}

void ChromeNote::paintEvent(QPaintEvent*) {
    if (width() < 2 * QirnKitHost::metrics().icon) return; // less than this would only show dots
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, text_, QirnKitHost::colors().dim);
}

} // namespace qirn
