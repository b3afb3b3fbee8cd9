#include "shell/panels/color/HexField.h"

#include "app/desktop/Desktop.h"
#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <utility>

#include <QKeyEvent>
#include <QStyle>

namespace qirn {

namespace {
constexpr int kBlinkTime = 120; // milliseconds, of any motion at most
} // namespace

HexField::HexField(PaintModel& model, QWidget* parent) : QLineEdit(parent), model_(model) {
    setObjectName(QStringLiteral("hex"));
    setAccessibleName(tr("Hex"));
    setPlaceholderText(QStringLiteral("#RRGGBB"));
    setToolTip(tr("Type a color like #B3001B and press Return"));
    blink_.setSingleShot(true);
    connect(&blink_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

QSize HexField::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {fontMetrics().horizontalAdvance(placeholderText()) + 2 * m.gap + 2 * m.tightGap, m.controlHeight};
}

void HexField::showColor(const PaintColor& color) {
    const QString hex = color.hex();
    if (hex == shown_) return;
    shown_ = hex;
    setText(hex);
}

bool HexField::take() {
    const auto typed = PaintColor::fromHex(text());
    if (!typed) return false;
    shown_.clear(); // "abc" becomes "#AABBCC" also where that is the color already
    guarded(model_, [&] { model_.colors().pick(*typed, Colors::AddRecent::yes); });
    showColor(model_.colors().primary());
    return true;
}

void HexField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    cameByMouse_ = event->reason() == Qt::MouseFocusReason;
}

// The press that brings the keyboard selects all: a color is typed whole.
void HexField::mousePressEvent(QMouseEvent* event) {
    QLineEdit::mousePressEvent(event);
    if (std::exchange(cameByMouse_, false)) selectAll();
}

// Return and Escape go on to the window, which gives the keys back to the canvas.
void HexField::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !take()) {
        model_.desktop().beep();
        const int motion = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
        if (motion > 0) blink_.start(std::min(motion, kBlinkTime));
        selectAll();
        update();
        return event->accept();
    }
    if (event->key() == Qt::Key_Escape) setText(shown_);
    if (isReturn || event->key() == Qt::Key_Escape)
        event->ignore();
    else
        QLineEdit::keyPressEvent(event);
}

void HexField::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        setText(shown_);
    QLineEdit::focusOutEvent(event);
}

void HexField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!blink_.isActive()) return;
    QPainter painter(this);
    QColor bright = QirnKitHost::colors().text;
    bright.setAlphaF(0.4F);
    ChromePaint::box(painter, rect(), QirnKitHost::metrics().radius, bright);
}

} // namespace qirn
