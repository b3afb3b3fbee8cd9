#include "shell/header/ZoomButton.h"

#include "app/commands/CommandRows.h"
#include "app/commands/PaintCommands.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/QrZoom.h"

#include <cmath>

#include <QMenu>

namespace qirn {

ZoomButton::ZoomButton(PaintModel& model, QWidget* parent) : QToolButton(parent) {
    setObjectName(QStringLiteral("interfaceZoom"));
    setAccessibleName(tr("Zoom Level"));
    setToolTip(tr("Size of everything round the picture"));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    auto* levels = new QMenu(this);
    connect(levels, &QMenu::aboutToShow, this, guarding(model, [levels, &model] {
                PaintCommands::fill(*levels, commandNamed("zoomLevel"), model);
            }));
    setMenu(levels);
    QirnKit::followMetrics(this, [this](const Metrics& m) {
        setText(QrZoom::levelTitle(static_cast<int>(std::lround(m.zoom * 100))));
        setFont(ChromeFont::small());
        setFixedHeight(m.controlHeight);
    });
}

} // namespace qirn
