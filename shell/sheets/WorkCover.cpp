#include "shell/sheets/WorkCover.h"

#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace qirn {

/// A well that fills.
class WorkCover::Line final : public QWidget {
public:
    using QWidget::QWidget;
    void setDone(double fraction) {
        done_ = std::clamp(fraction, 0.0, 1.0);
        setAccessibleDescription(QStringLiteral("%1 %").arg(static_cast<int>(done_ * 100)));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const ChromeColors& c = QirnKitHost::colors();
        QPainter painter(this);
        const double radius = height() / 2.0;
        ChromePaint::box(painter, rect(), radius, c.well, c.edge);
        QRectF filled = rect();
        filled.setWidth(std::max<double>(filled.height(), filled.width() * done_));
        if (done_ > 0) ChromePaint::box(painter, filled, radius, c.accent);
    }

private:
    double done_ = 0;
};

namespace {

class Box final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        const ChromeColors& c = QirnKitHost::colors();
        QPainter painter(this);
        ChromePaint::box(painter, rect(), QirnKitHost::metrics().radius, c.panel, c.edge);
    }
};

} // namespace

WorkCover::WorkCover(QWidget* window)
    : QWidget(window),
      box_(new Box(this)),
      what_(new QLabel(box_)),
      line_(new Line(box_)),
      cancel_(new QPushButton(tr("Cancel"), box_)) {
    setObjectName(QStringLiteral("workCover"));
    setAccessibleName(tr("Work in progress"));
    line_->setAccessibleName(tr("Progress"));
    cancel_->setObjectName(QStringLiteral("cancelWork"));
    auto* rows = new QGridLayout(box_);
    rows->addWidget(what_, 0, 0, 1, 2);
    rows->addWidget(line_, 1, 0);
    rows->addWidget(cancel_, 1, 1);
    rows->setColumnStretch(0, 1);
    auto* middle = new QGridLayout(this);
    middle->addWidget(box_, 0, 0, Qt::AlignCenter);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        rows->setContentsMargins(m.margin, m.margin, m.margin, m.margin);
        rows->setHorizontalSpacing(m.margin);
        rows->setVerticalSpacing(m.gap);
        line_->setFixedHeight(m.tightGap);
        box_->setFixedWidth(m.px(420));
    });
    what_->setTextFormat(Qt::PlainText);
    connect(cancel_, &QPushButton::clicked, this, [this] {
        cancel_->setEnabled(false); // it is on its way
        if (doCancel_) doCancel_();
    });
    window->installEventFilter(this);
    hide();
}

void WorkCover::rise(const QString& what, const std::function<void()>& cancel) {
    while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    doCancel_ = cancel;
    what_->setText(what_->fontMetrics().elidedText(what, Qt::ElideMiddle, box_->width() * 7 / 8));
    line_->setDone(0);
    cancel_->setEnabled(true);
    focusBefore_ = QApplication::focusWidget();
    setGeometry(parentWidget()->rect());
    raise();
    show();
    cancel_->setFocus(Qt::PopupFocusReason);
}

void WorkCover::showDone(double fraction) {
    line_->setDone(fraction);
}

void WorkCover::fall() {
    doCancel_ = {};
    if (focusBefore_) focusBefore_->setFocus(Qt::PopupFocusReason);
    hide();
}

bool WorkCover::isPart(const QObject& receiver) const {
    if (!receiver.isWidgetType() || !isVisible()) return false;
    return &receiver == this || isAncestorOf(static_cast<const QWidget*>(&receiver));
}

bool WorkCover::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void WorkCover::keyPressEvent(QKeyEvent* event) {
    event->accept(); // none reaches the window
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) cancel_->click();
}

void WorkCover::keyReleaseEvent(QKeyEvent* event) {
    event->accept();
}

bool WorkCover::focusNextPrevChild(bool) {
    return true; // the one button keeps it
}

void WorkCover::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), QColor(0, 0, 0, 128));
}

} // namespace qirn
