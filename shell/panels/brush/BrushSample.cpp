#include "shell/panels/brush/BrushSample.h"

#include "app/model/Brushes.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <QPainter>

namespace qirn {

BrushSample::BrushSample(PaintModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    setAccessibleName(tr("Sample stroke"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(&model.brushes().previews(), &BrushPreviewCache::ready, this, qOverload<>(&QWidget::update));
}

QSize BrushSample::pictureSize() {
    const Metrics& m = QirnKitHost::metrics();
    return {m.px(BrushPreviewCache::kWidth), m.px(BrushPreviewCache::kHeight)};
}

double BrushSample::scaleFor(const QPainter& painter) {
    return ChromePaint::deviceRatio(painter) * QirnKitHost::metrics().zoom;
}

void BrushSample::paint(QPainter& painter, const QRectF& plate, const QImage& preview) {
    const Metrics& m = QirnKitHost::metrics();
    ChromePaint::box(painter, plate, m.smallRadius, QirnKitHost::colors().well);
    if (preview.isNull()) return;
    QRectF place({},
                 QSizeF(pictureSize()).scaled(plate.size(), Qt::KeepAspectRatio).boundedTo(pictureSize()));
    place.moveCenter(plate.center());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(ChromePaint::snapped(painter, place), preview);
    painter.restore();
}

void BrushSample::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Brushes& brushes = model_.brushes();
    paint(
        painter, rect(),
        picture_.of(brushes.activeBrush(), brushes.previews(), scaleFor(painter), BrushPicture::Turn::next));
}

} // namespace qirn
