#include "shell/StatusBar.h"

#include "app/files/DocSession.h"
#include "app/model/CanvasStatus.h"
#include "app/model/PaintModel.h"
#include "app/model/Safety.h"
#include "kit/QirnKit.h"
#include "shell/StatusItems.h"

#include <chrono>
#include <cmath>

#include <QHBoxLayout>

namespace qirn {

namespace {
constexpr std::chrono::milliseconds kPause(30); // least time between two updates of the cursor
}

StatusBar::StatusBar(PaintModel& model, QWidget* parent)
    : ChromePanel(Surface::panel, Qt::TopEdge, parent),
      model_(model) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // what has no room gives way
    auto* row = new QHBoxLayout(this);
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        setFixedHeight(m.statusHeight);
        row->setContentsMargins(m.groupGap, 0, m.groupGap, 0);
        row->setSpacing(m.margin);
    });
    const auto text = [&](const char* name) {
        const bool isLayer = qstrcmp(name, "layer") == 0;
        auto* item =
            new StatusText(name, isLayer ? StatusText::GivesWay::yes : StatusText::GivesWay::no, this);
        row->addWidget(item);
        return item;
    };
    size_ = text("size");
    zoom_ = text("zoom");
    rotation_ = text("rotation");
    flip_ = text("flip");
    cursor_ = text("cursor");
    pressure_ = new PressureMeter(this);
    row->addWidget(pressure_);
    layer_ = text("layer");
    undo_ = text("undo");
    stroke_ = text("stroke");
    row->addStretch();
    autosave_ = text("autosave");

    pause_.setSingleShot(true);
    pause_.setInterval(kPause);
    connect(&pause_, &QTimer::timeout, this, [this] {
        if (isLate_) followCursor();
    });
    connect(&model, &PaintModel::changed, this, &StatusBar::refresh);
    connect(&model.status(), &CanvasStatus::changed, this, &StatusBar::followCursor);
    zoom_->setWidest(tr("Zoom %L1%").arg(std::lround(100 * kMaxZoom)));
    rotation_->setWidest(tr("View rotated %L1°").arg(-180));
    refresh();
}

bool StatusBar::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) makeRoom(); // an item has another width
    return ChromePanel::event(event);
}

void StatusBar::makeRoom() {
    const Metrics& m = QirnKitHost::metrics();
    const auto widthOf = [&m](const QWidget& item) { return item.minimumSizeHint().width() + m.margin; };
    int needed = 2 * m.groupGap + widthOf(*pressure_);
    for (const StatusText* item : findChildren<StatusText*>())
        if (!item->text().isEmpty()) needed += widthOf(*item);
    for (StatusText* item : {undo_, stroke_, autosave_, size_}) {
        const bool fits = needed <= width();
        item->setRoom(fits);
        if (!fits && !item->text().isEmpty()) needed -= widthOf(*item);
    }
    pressure_->setVisible(needed <= width());
}

void StatusBar::refresh() {
    const DocSession* session = model_.current();
    if (session) {
        const PaintDocument& doc = session->doc();
        size_->setText(
            tr("%L1 × %L2 px · %L3 DPI").arg(doc.grid().width).arg(doc.grid().height).arg(doc.dpi));
        layer_->setText(tr("Layer: %1").arg(doc.activeLayer().name));
        undo_->setText(tr("Undo: %Ln steps", nullptr, static_cast<int>(doc.undoDepth())));
        undo_->setWidest(tr("Undo: %Ln steps", nullptr, static_cast<int>(model_.prefs().undoSteps)));
        cursor_->setWidest(tr("X %L1  Y %L2").arg(doc.grid().width).arg(doc.grid().height));
    }
    autosave_->setText(model_.safety().lastAutosaveText().value_or(QString()));
    refreshCursor();
}

void StatusBar::followCursor() {
    isLate_ = pause_.isActive();
    if (isLate_) return;
    refreshCursor();
    pause_.start();
}

void StatusBar::refreshCursor() {
    const CanvasStatus::View& view = model_.status().view();
    const CanvasStatus::Cursor& cursor = model_.status().cursor();
    const long degrees = std::lround(std::remainder(view.rotation, 360));
    zoom_->setText(tr("Zoom %L1%").arg(std::lround(view.zoom * 100)));
    rotation_->setText(view.rotation != 0 ? tr("View rotated %L1°").arg(degrees) : QString());
    flip_->setText(view.flipped ? tr("View flipped") : QString());
    cursor_->setText(cursor.inside ? tr("X %L1  Y %L2").arg(cursor.x).arg(cursor.y) : tr("X –  Y –"));
    pressure_->setPressure(cursor.pressure);
    const auto& stats = model_.status().lastStrokeStats();
    stroke_->setText(model_.prefs().showPerformance && stats ? *stats : QString());
}

} // namespace qirn
