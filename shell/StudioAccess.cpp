#include "shell/StudioAccess.h"

#include "app/canvas/CanvasView.h"
#include "app/files/DocSession.h"
#include "shell/HudBubble.h"

#include <cmath>
#include <memory>

#include <QAccessibleWidget>
#include <QCoreApplication>

namespace qirn {

namespace {

class CanvasAccess : public QAccessibleWidget {
public:
    explicit CanvasAccess(CanvasView* canvas) : QAccessibleWidget(canvas, QAccessible::Canvas) {}

    QString text(QAccessible::Text kind) const override {
        const DocSession* session = static_cast<CanvasView*>(object())->session();
        if (kind != QAccessible::Description || !session) return QAccessibleWidget::text(kind);
        const PaintDocument& doc = session->doc();
        return QCoreApplication::translate("qirn::StudioAccess", "%1, %L2 × %L3 px, zoom %L4%, layer %5")
            .arg(session->name)
            .arg(doc.grid().width)
            .arg(doc.grid().height)
            .arg(std::lround(session->view.zoom * 100))
            .arg(doc.activeLayer().name);
    }
};

class BubbleAccess : public QAccessibleWidget {
public:
    explicit BubbleAccess(HudBubble* bubble) : QAccessibleWidget(bubble, QAccessible::Notification) {}
};

} // namespace

QAccessibleInterface* studioAccess(const QString&, QObject* object) {
    // The accessibility cache owns what is made here.
    if (auto* canvas = qobject_cast<CanvasView*>(object))
        return std::make_unique<CanvasAccess>(canvas).release();
    if (auto* bubble = qobject_cast<HudBubble*>(object))
        return std::make_unique<BubbleAccess>(bubble).release();
    return nullptr;
}

} // namespace qirn
