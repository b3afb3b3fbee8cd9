#include "kit/controls/ChromeNote.h"

#include <QPainter>
#include <QTextDocument>

#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

ChromeNote::ChromeNote(const QString& text, QWidget* parent, Font face) : QWidget(parent), text_(text) {
    QirnKit::followMetrics(this, [this, face](const Metrics&) { setFont(face()); });
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

QSize ChromeNote::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text_) + 1, fontMetrics().height()};
}

void ChromeNote::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleName(text);
    updateGeometry();
    tellWhole();
    update();
}

void ChromeNote::tellWhole() {
    const bool isCut = width() < sizeHint().width();
    setToolTip(isCut ? Qt::convertFromPlainText(text_, Qt::WhiteSpaceNormal) : QString());
}

void ChromeNote::resizeEvent(QResizeEvent*) {
    tellWhole();
}

void ChromeNote::paintEvent(QPaintEvent*) {
    if (width() < 2 * QirnKitHost::metrics().icon) return; // less than this would only show dots
    QPainter painter(this);
    ChromePaint::text(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, text_, QirnKitHost::colors().dim);
}

} // namespace qirn
