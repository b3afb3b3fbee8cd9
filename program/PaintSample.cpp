#include "program/PaintSample.h"

#include "app/text/TextRenderer.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "core/selection/Selection.h"
#include "formats/ImageExport.h"
#include "formats/native/PaintFile.h"
#include "operations/Gradient.h"
#include "operations/LayerOperations.h"
#include "operations/ShapePath.h"
#include "operations/Stamp.h"
#include "platform/Bytes.h"
#include "platform/Trigonometry.h"
#include "platform/files/AtomicFile.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

namespace qirn {

namespace {

constexpr int kWidth = 2400, kHeight = 1350, kDpi = 150;
constexpr uint64_t kSeed = 1;
constexpr double kPi = 3.14159265358979323846;

PaintColor color(const char* hex) {
    return *PaintColor::fromHex(QLatin1String(hex));
}

BrushSettings preset(const char* name) {
    return *BrushLibrary::named(QLatin1String(name));
}

void paint(PaintDocument& doc, const BrushSettings& brush, const PaintColor& color,
           std::initializer_list<QPointF> line) {
    std::vector<StrokePoint> points;
    for (const QPointF& p : line) points.emplace_back(p.x(), p.y(), 1, 0, 0, 0);
    paintStroke(doc, points, brush, color, nullptr, kSeed);
}

void linear(PaintDocument& doc, QPointF from, QPointF to, const char* start, const char* end) {
    gradientFill(doc, from, to, GradientKind::linear, color(start), color(end), 1);
}

Layer& newLayer(PaintDocument& doc, const char* name) {
    return *addLayer(doc, QString::fromUtf8(name));
}

void paintMesas(PaintDocument& doc) {
    Layer& layer = newLayer(doc, "Mesas");
    QPainterPath path(QPointF(0, 1000));
    for (const QPointF& p : {QPointF(300, 980), QPointF(360, 820), QPointF(900, 810), QPointF(960, 960),
                             QPointF(1500, 940), QPointF(1580, 760), QPointF(2100, 750), QPointF(2180, 930),
                             QPointF(2400, 920), QPointF(2400, 1350), QPointF(0, 1350)}) {
        path.lineTo(p);
    }
    path.closeSubpath();
    const auto shape = renderShape(path, color("#1A0B16"), std::nullopt, 0, Antialias::yes);
    if (shape) stamp(doc, *shape->buffer, shape->rect.x, shape->rect.y, layer, 1, UseSelection::yes);
}

void paintSky(PaintDocument& doc) {
    newLayer(doc, "Sunset glow").blendMode = BlendMode::screen;
    BrushSettings glow = preset("Airbrush Soft");
    glow.size = 700;
    glow.flow = 0.25;
    paint(doc, glow, color("#FF6A13"), {{200, 820}, {1200, 760}, {2200, 800}});

    newLayer(doc, "Stars (spray)");
    BrushSettings stars = preset("Fine Mist");
    stars.size = 900;
    stars.sprayDensity = 260;
    stars.particleSize = 2.2;
    stars.spacing = 1;
    paint(doc, stars, PaintColor::white(), {{600, 300}, {1500, 260}, {2100, 330}});
}

void paintTitle(PaintDocument& doc) {
    TextSpec spec;
    spec.text = QStringLiteral("QIRN PAINT");
    spec.size = 300;
    spec.italic = true;
    spec.alignment = 1;
    spec.color = PaintColor::white();
    Layer& title = newLayer(doc, "Title");
    if (const auto text = TextRenderer::render(spec)) {
        stamp(doc, *text->buffer, text->x + 4 + (kWidth - text->buffer->width()) / 2, text->y + 280, title, 1,
              UseSelection::no);
    }

    newLayer(doc, "Chrome (clipped)").isClipping = true;
    linear(doc, {0, 330}, {0, 470}, "#FFFFFF", "#3A3F47");
    const SelectionRef before = doc.selection;
    QPainterPath lower;
    lower.addRect(0, 470, 2400, 300);
    doc.selection = Selection::make(lower, SelectionOp::replace, nullptr, kWidth, kHeight, Antialias::yes);
    linear(doc, {0, 470}, {0, 640}, "#0B0C10", "#D9DDE3");
    doc.selection = before;

    Layer& candy = newLayer(doc, "Candy paint (clipped, Color)");
    candy.isClipping = true;
    candy.blendMode = BlendMode::color;
    candy.opacity = 0.55;
    linear(doc, {400, 0}, {2000, 0}, "#B3001B", "#FF1F8F");
}

void paintSparkles(PaintDocument& doc) {
    newLayer(doc, "Sparkles (Add)").blendMode = BlendMode::add;
    BrushSettings halo = preset("Airbrush Fine");
    halo.size = 60;
    halo.flow = 0.6;
    BrushSettings ray = preset("Hard Round");
    ray.size = 4;
    for (const QPointF& p : {QPointF(520, 360), QPointF(1180, 330), QPointF(1900, 380)}) {
        paint(doc, halo, PaintColor::white(), {p});
        paint(doc, ray, PaintColor::white(), {p - QPointF(70, 0), p + QPointF(70, 0)});
        paint(doc, ray, PaintColor::white(), {p - QPointF(0, 70), p + QPointF(0, 70)});
    }
}

void paintInk(PaintDocument& doc) {
    newLayer(doc, "Ink");
    BrushSettings ink = preset("Ink Brush");
    ink.size = 10;
    std::vector<StrokePoint> points;
    for (int i = 0; i <= 200; ++i) {
        const double t = i / 200.0;
        const double pressure = std::clamp(0.2 + 0.8 * sineCosine(kPi * t).sine, 0.0, 1.0);
        points.emplace_back(700 + 1000 * t, 1180 + 18 * sineCosine(9 * t).sine, pressure, 0, 0, t);
    }
    paintStroke(doc, points, ink, color("#C9A227"), nullptr, kSeed);
}

} // namespace

std::unique_ptr<PaintDocument> PaintSample::make() {
    auto doc = std::make_unique<PaintDocument>(kWidth, kHeight, kDpi, std::nullopt);
    doc->activeLayer().name = QStringLiteral("Night sky");
    linear(*doc, {0, 0}, {0, kHeight}, "#0D0221", "#3A0F2E");
    paintMesas(*doc);
    paintSky(*doc);
    paintTitle(*doc);
    paintSparkles(*doc);
    paintInk(*doc);
    doc->setActiveIndex(doc->layerCount() - 1);
    doc->resetHistory();
    return doc;
}

void PaintSample::write(const QString& path) {
    const auto doc = make();
    writeAtomically(path, bytesOf(PaintFile::encode(*doc)));
    const QFileInfo info(path);
    const QString picture = info.dir().filePath(info.completeBaseName() + QStringLiteral(".png"));
    const auto png = ImageExport::pngData(flattenedImage(*doc), doc->dpi);
    if (!png) throw ExportError::cannotEncode(QStringLiteral("PNG (keeps transparency)"));
    writeAtomically(picture, bytesOf(*png));
}

} // namespace qirn
