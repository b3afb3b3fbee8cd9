#include "shell/header/TabStrip.h"

#include "app/files/DocSession.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/header/DocTab.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QScrollBar>
#include <QWheelEvent>

namespace qirn {

TabStrip::TabStrip(PaintModel& model, QWidget* parent) : QScrollArea(parent), model_(model) {
    auto* tabs = new QWidget(this);
    tabs->setAccessibleName(tr("Open pictures"));
    place_ = new QWidget(tabs);
    place_->setFocusPolicy(Qt::TabFocus); // never reached: it is hidden
    place_->hide();
    row_ = new QHBoxLayout(tabs);
    row_->setContentsMargins(0, 0, 0, 0);
    setWidget(tabs);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    viewport()->setAutoFillBackground(false);
    tabs->setAutoFillBackground(false);
    laidOut_.setSingleShot(true);
    connect(&laidOut_, &QTimer::timeout, this, &TabStrip::followLayout);
    QirnKit::followMetrics(this, [this](const Metrics& m) { row_->setSpacing(m.tightGap); });
    refresh();
}

void TabStrip::refresh() {
    const auto& sessions = model_.pictures().sessions();
    const bool hadFocus = std::ranges::any_of(tabs_, [](const DocTab* tab) { return tab->hasFocus(); });
    while (tabs_.size() < sessions.size()) {
        auto* tab = new DocTab(model_, widget());
        tab->setObjectName(QStringLiteral("tab %1").arg(tabs_.size() + 1));
        setTabOrder(place_, tab);
        tabs_.push_back(tab);
        row_->addWidget(tab);
    }
    while (tabs_.size() > sessions.size()) {
        tabs_.back()->hide();
        tabs_.back()->deleteLater(); // its own click handler may be running
        tabs_.pop_back();
    }
    current_ = nullptr;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        const bool isCurrent = sessions[i].get() == model_.current();
        tabs_[i]->showSession(*sessions[i], isCurrent);
        if (isCurrent) current_ = tabs_[i];
    }
    if (hadFocus && current_) current_->setFocus(Qt::OtherFocusReason);
    updateGeometry();
    laidOut_.start(0);
}

bool TabStrip::isOverfull() const {
    return widget()->minimumSizeHint().width() > viewport()->width();
}

QSize TabStrip::sizeHint() const {
    return {widget()->sizeHint().width(), QirnKitHost::metrics().controlHeight};
}

QSize TabStrip::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {m.controlWidth, m.controlHeight};
}

bool TabStrip::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        laidOut_.start(0);
    }
    return QScrollArea::eventFilter(watched, event);
}

void TabStrip::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    laidOut_.start(0);
}

void TabStrip::followLayout() {
    if (current_) ensureWidgetVisible(current_, 0, 0);
    if (isOverfull() != std::exchange(wasOverfull_, isOverfull())) Q_EMIT overfullChanged();
}

void TabStrip::wheelEvent(QWheelEvent* event) {
    const QPoint turn = event->angleDelta();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - turn.x() - turn.y());
    event->accept();
}

} // namespace qirn
