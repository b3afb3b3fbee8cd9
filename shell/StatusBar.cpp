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
    auto* row = new QHBoxLayout(this);
    QirnKit::followMetrics(this, [this, row](const Metrics& m) {
        setFixedHeight(m.statusHeight);
        row->setContentsMargins(m.groupGap, 0, m.groupGap, 0);
        row->setSpacing(m.margin);
    });
    const auto text = [&](const char* name) {
        auto* item = new StatusText(name, this);
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
    refresh();
}

void StatusBar::refresh() {
    const DocSession* session = model_.current();
    if (session) {
        const PaintDocument& doc = session->doc();
        size_->setText(tr("%1 × %2 px · %3 DPI").arg(doc.grid().width).arg(doc.grid().height).arg(doc.dpi));
        layer_->setText(tr("Layer: %1").arg(doc.activeLayer().name));
        undo_->setText(tr("Undo: %1 steps").arg(doc.undoDepth()));
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
    const long degrees = std::lround(view.rotation);
    zoom_->setText(tr("Zoom %1%").arg(std::lround(view.zoom * 100)));
    rotation_->setText(view.rotation != 0 ? tr("View rotated %1°").arg(degrees) : QString());
    flip_->setText(view.flipped ? tr("View flipped") : QString());
    cursor_->setText(cursor.inside ? tr("X %1  Y %2").arg(cursor.x).arg(cursor.y) : tr("X –  Y –"));
    pressure_->setPressure(cursor.pressure);
    const auto& stats = model_.status().lastStrokeStats();
    stroke_->setText(model_.prefs().showPerformance && stats ? *stats : QString());
}

} // namespace qirn
