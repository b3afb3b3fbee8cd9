#include "shell/sheets/TextPreview.h"

#include "app/desktop/Failures.h"
#include "app/text/TextRenderer.h"
#include "core/PaintDocument.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace qirn {

namespace {

constexpr double kMargin = 12; // round the words, logical pixels
constexpr double kSquare = 8;  // of the checkerboard, device pixels at least

QRectF rectOf(const IRect& rect) {
    return {static_cast<double>(rect.x), static_cast<double>(rect.y), static_cast<double>(rect.w),
            static_cast<double>(rect.h)};
}

} // namespace

TextPreview::TextPreview(const PaintDocument& doc, QPoint corner, QWidget* parent)
    : QWidget(parent),
      picture_(doc),
      corner_(corner) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void TextPreview::setText(const TextSpec& spec) {
    spec_ = spec;
    update();
}

void TextPreview::paintEvent(QPaintEvent*) {
    const ChromeColors& c = QirnKitHost::colors();
    const Metrics& m = QirnKitHost::metrics();
    QPainter painter(this);
    painter.fillRect(rect(), c.canvas);
    painter.save();
    contained([&] { paintPicture(painter); });
    painter.restore();
    ChromePaint::box(painter, rect(), m.smallRadius, {}, c.edge);
}

void TextPreview::paintPicture(QPainter& painter) {
    const double ratio = ChromePaint::deviceRatio(painter);
    const QSizeF room = QSizeF(size()) * ratio; // device pixels
    const auto words = TextRenderer::bounds(spec_);
    const QRectF wanted = (words ? rectOf(*words) : QRectF(0, 0, 1, 1)).translated(corner_);
    const double margin = 2 * kMargin * ratio;
    const double zoom = std::max(1e-3, std::min({1.0, (room.width() - margin) / wanted.width(),
                                                 (room.height() - margin) / wanted.height()}));
    QPointF origin(room.width() / 2 - wanted.center().x() * zoom,
                   room.height() / 2 - wanted.center().y() * zoom);
    if (zoom == 1) origin = origin.toPoint(); // a pixel of the picture is one of the screen
    QTransform toDevice =
        QTransform::fromScale(zoom, zoom) * QTransform::fromTranslate(origin.x(), origin.y());

    const int level =
        std::clamp(static_cast<int>(std::floor(-std::log2(zoom))), 0, ReducedPicture::kLastLevel);
    const QRect seen = toDevice.inverted().mapRect(QRectF({}, room)).toAlignedRect();
    const auto part = picture_.part({seen.x(), seen.y(), seen.width(), seen.height()}, level,
                                    kSquare * static_cast<double>(1 << level));
    if (part.image.isNull()) return;
    painter.setTransform(toDevice * QTransform::fromScale(1 / ratio, 1 / ratio), true);
    painter.setClipRect(rectOf(picture_.grid().bounds()));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom < 1);
    painter.drawImage(rectOf(part.onCanvas), part.image);
    if (!words) return;
    painter.translate(corner_);
    TextRenderer::draw(painter, spec_);
}

} // namespace qirn
