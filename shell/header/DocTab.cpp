#include "shell/header/DocTab.h"

#include "app/desktop/HostWords.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/Metrics.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace qirn {

namespace {

int mostName() {
    return QirnKitHost::metrics().px(200); // longer names are elided
}
int leastName() {
    return QirnKitHost::metrics().px(64);
}
/// From either end of the tab to its name or its cross. The dot stands in the one before the name.
int padding() {
    return QirnKitHost::metrics().groupGap;
}
/// Of the close button, which has some of the padding round its cross.
int closeLeft(int width) {
    const Metrics& m = QirnKitHost::metrics();
    return width - padding() - (m.smallButton + m.chevron) / 2;
}

class Dot : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const double side = QirnKitHost::metrics().px(6);
        QRectF mark(0, 0, side, side);
        mark.moveCenter(QRectF(rect()).center());
        ChromePaint::box(painter, mark, side / 2, QirnKitHost::colors().focus);
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
    close_ = new IconButton(Icon::close, tr("Close this picture"), this, &Metrics::chevron);
    close_->setFocusPolicy(Qt::NoFocus); // the Delete key on the tab does the same
    connect(this, &QAbstractButton::clicked, this, guarding(model_, [this] {
                if (DocSession* shown = session()) model_.pictures().select(*shown);
            }));
    connect(close_, &QAbstractButton::clicked, this, guarding(model_, [this] { closeSession(); }));
}

DocSession* DocTab::session() const {
    for (const SessionRef& open : model_.pictures().sessions())
        if (open->id == id_) return open.get();
    return nullptr;
}

void DocTab::closeSession() {
    if (DocSession* shown = session()) model_.pictures().close(*shown);
}

void DocTab::showSession(const DocSession& session, bool current) {
    id_ = session.id;
    setChecked(current);
    setFocusPolicy(current ? Qt::TabFocus : Qt::NoFocus); // the arrow keys go to the others
    const bool dirty = session.isDirty();
    dot_->setVisible(dirty);
    dot_->setToolTip(Recovery::isUpToDate(session) ? tr("Not saved yet (autosaved for safety)")
                                                   : tr("Not saved yet"));
    setAccessibleName(dirty ? tr("%1, not saved yet").arg(session.name) : session.name);
    if (text() != session.name) {
        setText(session.name);
        setShortcut({}); // an "&" in a name makes no key
        updateGeometry();
    }
    const QString place = session.fileURL.isEmpty() ? session.name : session.fileURL.toLocalFile();
    setToolTip(plainTip(session.remark.isEmpty() ? place : place + u'\n' + session.remark));
}

int DocTab::nameWidth() const {
    return std::min(fontMetrics().horizontalAdvance(text()) + 1,
                    mostName()); // the advance may be rounded down
}

QSize DocTab::sizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    const int name = nameWidth();
    return {padding() + name + m.tightGap + (m.smallButton + m.chevron) / 2 + padding(), m.controlHeight};
}

QSize DocTab::minimumSizeHint() const {
    const Metrics& m = QirnKitHost::metrics();
    return {sizeHint().width() - nameWidth() + std::min(nameWidth(), leastName()), m.controlHeight};
}

void DocTab::resizeEvent(QResizeEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    dot_->setGeometry(ChromePaint::visual(rect(), QRect(0, 0, padding(), height())));
    const QRect cross(closeLeft(width()), (height() - m.smallButton) / 2, m.smallButton, m.smallButton);
    close_->setGeometry(ChromePaint::visual(rect(), cross));
}

void DocTab::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint()))
        guarded(model_, [this] { closeSession(); });
    else
        QAbstractButton::mouseReleaseEvent(event);
}

void DocTab::keyPressEvent(QKeyEvent* event) {
    const int right = isRightToLeft() ? -1 : 1;
    const int step = event->key() == Qt::Key_Right ? right : event->key() == Qt::Key_Left ? -right : 0;
    guarded(model_, [&] {
        if (event->key() == Qt::Key_Delete)
            closeSession();
        else if (step != 0)
            model_.pictures().selectNeighbor(step);
        else
            QAbstractButton::keyPressEvent(event);
    });
}

void DocTab::paintEvent(QPaintEvent*) {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    QPainter painter(this);
    if (isChecked())
        ChromePaint::box(painter, rect(), m.radius, c.raised, c.edge);
    else if (underMouse())
        ChromePaint::box(painter, rect(), m.radius, c.panel, c.divider);
    const QRectF name(padding(), 0, closeLeft(width()) - m.tightGap - padding(), height());
    ChromePaint::text(painter, ChromePaint::visual(rect(), name), Qt::AlignLeft | Qt::AlignVCenter, text(),
                      isChecked() || underMouse() ? c.text : c.dim);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, rect(), m.radius);
}

} // namespace qirn
