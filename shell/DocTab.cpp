#include "shell/DocTab.h"

#include <algorithm>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/style/ChromePaint.h"

namespace qirn {

namespace {

constexpr int kMostName = 200; // longer names end in dots
constexpr int kLeastName = 48;
constexpr int kDot = 6;
constexpr int kCloseButton = 20;
constexpr int kNameLeft = 20; // behind the dot

class Dot : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QRectF mark(0, 0, kDot, kDot);
        mark.moveCenter(QRectF(rect()).center());
        ChromePaint::box(painter, mark, kDot / 2.0, QirnKitHost::colors().focus);
    }
};

} // namespace

DocTab::DocTab(PaintModel& model, QWidget* parent)
    : QAbstractButton(parent),
      model_(model),
      dot_(new Dot(this)) {
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    dot_->setToolTip(tr("Not saved yet (autosaved for safety)"));
    close_ = new IconButton(Icon::close, tr("Close this picture"), this);
    close_->setFocusPolicy(Qt::NoFocus); // Delete on the tab does the same
    close_->setIconSize({Metrics::kChevron, Metrics::kChevron});
    connect(this, &QAbstractButton::clicked, this, guarding(model_, [this] {
                if (DocSession* shown = session()) model_.select(*shown);
            }));
    connect(close_, &QAbstractButton::clicked, this, guarding(model_, [this] { closeSession(); }));
}

DocSession* DocTab::session() const {
    for (const SessionRef& open : model_.sessions())
        if (open->id == id_) return open.get();
    return nullptr;
}

void DocTab::closeSession() {
    if (DocSession* shown = session()) model_.close(*shown);
}

void DocTab::showSession(const DocSession& session, bool current) {
    id_ = session.id;
    setChecked(current);
    const bool dirty = session.isDirty();
    dot_->setVisible(dirty);
    setAccessibleName(dirty ? tr("%1, not saved yet").arg(session.name) : session.name);
    if (text() != session.name) {
        setText(session.name);
        updateGeometry();
    }
    setToolTip(session.remark.isEmpty() ? session.name : session.name + u'\n' + session.remark);
}

QSize DocTab::sizeHint() const {
    const int name = std::min(fontMetrics().horizontalAdvance(text()), kMostName);
    return {kNameLeft + name + Metrics::kSpace8 + kCloseButton + Metrics::kSpace4, Metrics::kControlHeight};
}

QSize DocTab::minimumSizeHint() const {
    const int name = std::min(fontMetrics().horizontalAdvance(text()), kLeastName);
    return {sizeHint().width() - std::min(fontMetrics().horizontalAdvance(text()), kMostName) + name,
            Metrics::kControlHeight};
}

void DocTab::resizeEvent(QResizeEvent*) {
    dot_->setGeometry(0, 0, kNameLeft, height());
    const int top = (height() - kCloseButton) / 2;
    close_->setGeometry(width() - kCloseButton - Metrics::kSpace4, top, kCloseButton, kCloseButton);
}

void DocTab::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint()))
        closeSession();
    else
        QAbstractButton::mouseReleaseEvent(event);
}

void DocTab::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete)
        closeSession();
    else
        QAbstractButton::keyPressEvent(event);
}

void DocTab::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    if (isChecked())
        ChromePaint::box(painter, rect(), Metrics::kRadius, c.raised, c.edge);
    else if (underMouse())
        ChromePaint::box(painter, rect(), Metrics::kRadius, c.panel, c.divider);
    const QRectF name(kNameLeft, 0, close_->x() - Metrics::kSpace4 - kNameLeft, height());
    ChromePaint::text(painter, name, Qt::AlignLeft | Qt::AlignVCenter, text(),
                      isChecked() || underMouse() ? c.text : c.dim);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), Metrics::kRadius);
}

} // namespace qirn
