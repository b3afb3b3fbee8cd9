#include "kit/controls/SearchField.h"

#include <utility>

#include <QKeyEvent>
#include <QPainter>

#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

SearchField::SearchField(const QString& accessibleName, QWidget* parent)
    : QLineEdit(parent),
      clear_(new IconButton(Icon::close, tr("Clear"), this, &Metrics::chevron)) {
    setPlaceholderText(tr("Search"));
    setAccessibleName(accessibleName);
    clear_->setObjectName(QStringLiteral("clearSearch"));
    clear_->setFocusPolicy(Qt::NoFocus); // Escape does the same
    clear_->setCursor(Qt::ArrowCursor);
    clear_->hide();
    connect(clear_, &IconButton::clicked, this, &QLineEdit::clear);
    connect(this, &QLineEdit::textChanged, this, &SearchField::layOut);
    QirnKit::followMetrics(this, [this](const Metrics&) {
        layOut();
        updateGeometry();
    });
}

void SearchField::layOut() {
    const Metrics& m = QirnKitHost::metrics();
    clear_->setVisible(!text().isEmpty());
    int left = m.smallIcon + m.tightGap, right = text().isEmpty() ? 0 : m.smallButton;
    if (isRightToLeft()) std::swap(left, right);
    setTextMargins(left, 0, right, 0);
    const QRect place(width() - m.smallButton - m.tightGap, (height() - m.smallButton) / 2, m.smallButton,
                      m.smallButton);
    clear_->setGeometry(ChromePaint::visual(rect(), place));
}

void SearchField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    layOut();
}

QSize SearchField::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.controlWidth, m.controlHeight};
}

QSize SearchField::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int text = fontMetrics().horizontalAdvance(placeholderText());
    return {m.smallIcon + m.tightGap + text + 2 * m.gap + m.tightGap, m.controlHeight};
}

void SearchField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    const Metrics& m = QirnKitHost::metrics();
    QPainter painter(this);
    const QRect icon(m.gap, 0, m.smallIcon, height());
    ChromePaint::icon(painter, ChromePaint::visual(rect(), icon), Icon::search, m.smallIcon,
                      isEnabled() ? QirnKitHost::colors().dim : QirnKitHost::colors().faint);
}

void SearchField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) clear(); // and whoever is around gives the keys to another
    if (event->key() == Qt::Key_Down && event->modifiers() == Qt::NoModifier) {
        Q_EMIT leftDownward();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace qirn
