#include "SelfTest.h"

#include "AppFolders.h"
#include "CanvasView.h"
#include "Defaults.h"
#include "Desktop.h"
#include "PaintModel.h"
#include "Recovery.h"
#include "SelfTestReport.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "core/PaintEngine.h"
#include "formats/PaintFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"

#include <chrono>
#include <cstdio>

#include <QApplication>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace qirn {

void SelfTestReport::heading() { std::printf("Qirn Paint self-test — engine %s\n", PaintEngine::version); }

void SelfTestReport::check(const QString& name, bool passed) {
    ++(passed ? passed_ : failed_);
    std::printf("%s  %s\n", passed ? "PASS" : "FAIL", qPrintable(name));
}

void SelfTestReport::endSection() { std::fflush(stdout); }

void SelfTestReport::result() {
    if (failed_ == 0) std::printf("RESULT: ALL %d CHECKS PASSED\n", passed_);
    else std::printf("RESULT: %d CHECK(S) FAILED, %d passed\n", failed_, passed_);
    std::fflush(stdout);
}

namespace {

/// A desktop without a person: every question is cancelled.
class SilentDesktop final : public Desktop {
public:
    std::optional<QString> savePath;

    std::optional<QString> saveFile(const QString&, const QList<FileType>&, const QString&) override { return savePath; }
    QStringList openFiles(const QList<FileType>&) override { return {}; }
    int ask(const QString&, const QString&, const QStringList&, int cancelButton) override { return cancelButton; }
    void beep() override {}
    void noteRecentFile(const QString&) override {}
};

struct SelfTestWorld {
    SelfTestReport& report;
    SilentDesktop& desktop;
    Defaults& defaults;
    QString folder;

    void check(const char* name, bool passed) const { report.check(QString::fromUtf8(name), passed); }
};

BrushSettings plainBrush(double size, double opacity = 1) {
    BrushSettings brush(QStringLiteral("Plain"), QStringLiteral("Self-test"), BrushKind::paint);
    brush.size = size;
    brush.opacity = opacity;
    brush.hardness = 1;
    brush.spacing = 0.05;
    brush.pressureSize = false;
    return brush;
}

std::vector<StrokePoint> line(double x1, double y1, double x2, double y2, double pressure = 1) {
    std::vector<StrokePoint> points;
    for (int i = 0; i <= 20; ++i) {
        const double t = i / 20.0;
        points.emplace_back(x1 + (x2 - x1) * t, y1 + (y2 - y1) * t, pressure, 0, 0, t);
    }
    return points;
}

uint64_t paintAndPrint(const BrushSettings& brush, uint64_t seed) {
    PaintDocument doc(600, 300, 72, std::nullopt);
    if (brush.kind != BrushKind::paint) {
        paintStroke(doc, line(60, 150, 540, 150), plainBrush(120), PaintColor(0.2, 0.4, 0.8), nullptr, 1);
    }
    paintStroke(doc, line(40, 120, 560, 180, 0.8), brush, PaintColor(0.7, 0.02, 0.08), nullptr, seed);
    return doc.activeLayer().fingerprint();
}

// --- Sections, in the order in which they run

void strokes(const SelfTestWorld& world) {
    const PaintColor red(1, 0, 0);
    PaintDocument doc(300, 120, 72, std::nullopt);
    paintStroke(doc, line(30, 60, 270, 60), plainBrush(10), red, nullptr, 1);
    bool solid = true, clean = true;
    for (int x = 30; x <= 270; ++x) {
        for (int y = 56; y <= 63; ++y) solid = solid && doc.activeLayer().pixel(x, y) == PixelBytes{255, 0, 0, 255};
        clean = clean && doc.activeLayer().pixel(x, 50)[3] == 0 && doc.activeLayer().pixel(x, 65 + 1)[3] == 0;
    }
    world.check("A hard line has no gaps, also across a tile border", solid);
    world.check("A hard line stays within its width", clean);

    PaintDocument half(300, 120, 72, std::nullopt);
    std::vector<StrokePoint> crossing = line(30, 60, 270, 60);
    const auto back = line(270, 60, 30, 60);
    crossing.insert(crossing.end(), back.begin(), back.end());
    paintStroke(half, crossing, plainBrush(16, 0.5), red, nullptr, 1);
    world.check("Opacity is a ceiling, however often a stroke crosses itself", std::abs(half.activeLayer().pixel(150, 60)[3] - 128) <= 2 &&
                                                                                  std::abs(half.activeLayer().pixel(256, 60)[3] - 128) <= 2);
    doc.activeLayer().isLocked = true;
    const uint64_t print = doc.fingerprint();
    world.check("A locked layer is not painted on", paintStroke(doc, line(0, 0, 9, 9), plainBrush(10), red, nullptr, 1).isEmpty() && doc.fingerprint() == print);
    for (const BrushSettings& preset : BrushLibrary::builtIn()) {
        const uint64_t first = paintAndPrint(preset, 7);
        const bool paints = preset.kind != BrushKind::paint || first != PaintDocument(600, 300, 72, std::nullopt).activeLayer().fingerprint();
        world.report.check(QStringLiteral("\"%1\" paints, and the same from the same seed").arg(preset.name), paints && first == paintAndPrint(preset, 7));
    }
}

void blendModes(const SelfTestWorld& world) {
    static constexpr PixelBytes kKnown[kBlendModeCount] = {
        {60, 150, 240, 255}, {47, 59, 47, 255},   {213, 191, 243, 255}, {171, 118, 94, 255},  {60, 100, 50, 255},
        {200, 150, 240, 255}, {255, 243, 255, 255}, {21, 0, 37, 255},   {94, 127, 231, 255},  {177, 111, 106, 255},
        {140, 50, 190, 255}, {166, 132, 196, 255}, {255, 250, 255, 255}, {140, 0, 0, 255},    {5, 0, 35, 255},
        {64, 139, 214, 255}, {215, 95, 35, 255},  {52, 142, 232, 255},  {208, 108, 58, 255},
    };
    for (const BlendModeRow& row : kBlendModes) {
        const PixelBytes got = Compositor::blendBytes({200, 100, 50, 255}, {60, 150, 240, 255}, row.mode, 1);
        const PixelBytes& known = kKnown[static_cast<std::size_t>(row.mode)];
        bool near = true;
        for (std::size_t c = 0; c < 4; ++c) near = near && std::abs(got[c] - known[c]) <= 1;
        world.report.check(QStringLiteral("%1 mixes as it should").arg(QLatin1String(row.displayName)), near);
    }
    PaintDocument doc(300, 300, 72, PaintColor::fromBytes(200, 100, 50));
    doc.fillLayer(doc.layer(1), PaintColor::fromBytes(60, 150, 240));
    doc.layer(1).blendMode = BlendMode::multiply;
    const PixelBytes multiplied = compositePixel(doc, 150, 150);
    world.check("A multiplied layer shows in the finished picture", std::abs(multiplied[0] - 47) <= 1 && std::abs(multiplied[1] - 59) <= 1);
    doc.layer(1).isVisible = false;
    world.check("A hidden layer does not", compositePixel(doc, 150, 150) == PixelBytes{200, 100, 50, 255});
}

void undoRedo(const SelfTestWorld& world) {
    PaintDocument doc(1200, 900, 72, PaintColor::white());
    std::vector<uint64_t> prints{doc.fingerprint()};
    for (int i = 0; i < 80; ++i) {
        paintStroke(doc, line(20 + i * 7, 30, 60 + i * 7, 200), plainBrush(8), PaintColor(0, 0, i / 80.0), nullptr, 1);
        doc.commit(QStringLiteral("Brush Stroke"));
        prints.push_back(doc.fingerprint());
    }
    world.check("80 strokes hold only the tiles that they touched", doc.historyBytes() < 80 * 4 * int64_t{kTileBytes});
    for (int i = 0; i < 40; ++i) doc.undo();
    world.check("40 undos give the picture of stroke 40", doc.fingerprint() == prints[40]);
    for (int i = 0; i < 40; ++i) doc.undo();
    world.check("40 more give the blank one", doc.fingerprint() == prints[0] && !doc.canUndo());
    while (doc.canRedo()) doc.redo();
    world.check("Redo brings all back", doc.fingerprint() == prints[80]);
    doc.maxUndoSteps = 3;
    doc.commit(QStringLiteral("Trim"));
    world.check("The history keeps as many steps as it is told", doc.history().size() == 4);
}

std::unique_ptr<PaintDocument> samplePicture() {
    auto doc = std::make_unique<PaintDocument>(700, 500, 300, PaintColor(0.9, 0.85, 0.8));
    paintStroke(*doc, line(50, 60, 650, 420, 0.9), *BrushLibrary::named(QStringLiteral("Charcoal")), PaintColor::black(), nullptr, 3);
    const LayerRef layer = addLayer(*doc, QStringLiteral("Ébauche ✏️ shading"));
    paintStroke(*doc, line(650, 60, 50, 420, 0.6), *BrushLibrary::named(QStringLiteral("Soft Round")), PaintColor(0.1, 0.3, 0.9), nullptr, 4);
    layer->blendMode = BlendMode::overlay;
    layer->opacity = 0.625;
    layer->isClipping = layer->alphaLocked = true;
    doc->onion.enabled = true;
    doc->onion.before = 3;
    doc->setActiveIndex(1);
    doc->resetHistory();
    return doc;
}

void saveReopen(const SelfTestWorld& world) {
    const auto doc = samplePicture();
    const QByteArray bytes = PaintFile::encode(*doc);
    const auto again = PaintFile::decode(bytesOf(bytes));
    world.check("A saved picture opens with the same pixels and layers", again->fingerprint() == doc->fingerprint());
    world.check("Size, resolution, current layer and onion skin come back",
                again->grid() == doc->grid() && again->dpi == 300 && again->activeIndex() == 1 && again->onion == doc->onion);
    world.check("The file carries a preview", PaintFile::thumbnailOf(bytesOf(bytes)).has_value());
    const auto refuses = [](const QByteArray& file) {
        try {
            PaintFile::decode(bytesOf(file));
            return QString();
        } catch (const PaintFileError& error) {
            return error.description();
        }
    };
    world.check("A file cut in half is refused", refuses(bytes.first(bytes.size() / 2)).contains(QStringLiteral("damaged")));
    world.check("Another kind of file is refused", refuses("not a paint file") == QStringLiteral("This file is not an Qirn Paint document."));
}

void recovery(const SelfTestWorld& world) {
    DocSession session(samplePicture(), QStringLiteral("Lost work"), {}, QUuid::createUuid(), DocSession::Dirty::yes);
    Recovery::write(session, Recovery::Synchronously::yes);
    const auto found = Recovery::pending({});
    world.check("A safety copy is found after a crash", found.size() == 1 && found[0].id == session.id);
    world.check("An open picture's copy is not offered", Recovery::pending({session.id}).empty());
    if (found.empty()) return;
    world.check("The list shows a preview", !found[0].thumbnail().isNull());
    const SessionRef restored = Recovery::restore(found[0]);
    world.check("The recovered picture is the one that was lost", restored->doc().fingerprint() == session.doc().fingerprint());
    world.check("It counts as unsaved", restored->isDirty() && restored->name == QStringLiteral("Lost work (recovered)"));
    Recovery::discard(session.id, Recovery::MoveToTrash::no);
    world.check("A discarded copy is gone", Recovery::pending({}).empty());
}

void persistence(const SelfTestWorld& world) {
    {
        PaintModel model(PaintModel::LoadStores::no, world.desktop, world.defaults);
        model.choose(*BrushLibrary::named(QStringLiteral("Finger Blend")));
        model.pick(PaintColor(0.25, 0.5, 0.75), PaintModel::AddRecent::yes);
        PaintPrefs prefs = model.prefs();
        prefs.undoSteps = 60;
        model.setPrefs(prefs);
        model.saveBrushAsNew(QStringLiteral("Self-test brush"));
        model.saveState();
    }
    const PaintModel model(PaintModel::LoadStores::yes, world.desktop, world.defaults);
    world.check("The tool and its brush come back after a restart", model.tool() == Tool::smudge && model.activeBrush().name == QStringLiteral("Self-test brush"));
    world.check("The colours come back", model.primary() == PaintColor(0.25, 0.5, 0.75) && model.recent().size() == 1);
    world.check("The preferences come back", model.prefs().undoSteps == 60);
    world.check("The user's presets come back", model.userBrushes().size() == 1);
}

void canvasPipeline(const SelfTestWorld& world) {
    PaintModel model(PaintModel::LoadStores::no, world.desktop, world.defaults);
    CanvasView canvas(model);
    canvas.resize(900, 700);
    model.setCanvas(&canvas);
    model.newDocument(400, 300, 72, PaintColor::white(), QStringLiteral("Canvas"));
    canvas.show();
    canvas.setZoom(1.6);
    canvas.setRotation(37);
    canvas.toggleFlipView();
    const QPointF place(120, 200), back = canvas.canvasPoint(canvas.viewPoint(place));
    world.check("The pen maps back exactly in a turned, mirrored view", std::hypot(back.x() - place.x(), back.y() - place.y()) < 1e-6);
    model.setActiveBrush(plainBrush(24));
    const QPointF view = canvas.viewPoint(place);
    const QPointF at = QPointF(view.x(), canvas.height() * canvas.devicePixelRatioF() - view.y()) / canvas.devicePixelRatioF();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, canvas.mapToGlobal(at), Qt::LeftButton, type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(&canvas, &event);
    }
    const PaintDocument& doc = model.current()->doc();
    world.check("A press on the canvas paints under the pointer", doc.activeLayer().pixel(120, 200)[3] == 255 && doc.activeLayer().pixel(150, 200)[3] == 0);
    world.check("It is one undo step", doc.undoDepth() == 1 && doc.undoName() == QStringLiteral("Brush Stroke"));
    const int64_t composited = canvas.presentation().tilesComposited();
    canvas.setZoom(0.3);
    canvas.grab();
    canvas.setRotation(0);
    canvas.grab();
    world.check("Zoom and rotation composite nothing again", canvas.presentation().tilesComposited() == composited);
}

void quickPerformance(const SelfTestWorld& world) {
    constexpr double kTarget = 8.3; // milliseconds a pen point
    PaintDocument doc(3840, 2160, 72, PaintColor::white());
    doc.takeDirtyTiles();
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    brush.size = 120;
    BrushStroke stroke(doc, doc.layers()[1], brush, PaintColor(0.7, 0.02, 0.08), 1);
    std::size_t tiles = 0;
    const auto start = std::chrono::steady_clock::now();
    constexpr int kPoints = 300;
    for (int i = 0; i < kPoints; ++i) {
        stroke.add(StrokePoint(200 + i * 11, 1000 + 500 * ((i / 30) % 2 ? 1 : -1) * (i % 30) / 30.0, 0.8, 0, 0, i / 120.0));
        tiles += displayImages(doc, doc.takeDirtyTiles()).size();
    }
    stroke.end();
    const double mean = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count() / kPoints;
    std::printf("      120 px on 4K: %.2f ms per point, %lld dabs, %zu tiles\n", mean, static_cast<long long>(stroke.dabCount()), tiles);
    world.check("Pen points on a 4K canvas keep up with a tablet", stroke.dabCount() > kPoints && tiles >= kPoints && mean < 10 * kTarget);
}

/// Puts the stored values of the application back as they were.
class DefaultsGuard {
public:
    explicit DefaultsGuard(Defaults& defaults) : defaults_(defaults) {
        for (const QString& key : ourKeys()) before_[key] = *defaults_.value(key);
    }
    ~DefaultsGuard() {
        for (const QString& key : ourKeys()) {
            if (!before_.contains(key)) defaults_.remove(key);
        }
        for (const auto& [key, value] : before_) defaults_.setValue(key, value);
    }
    DefaultsGuard(const DefaultsGuard&) = delete;
    DefaultsGuard& operator=(const DefaultsGuard&) = delete;

private:
    QStringList ourKeys() const { return defaults_.keys().filter(QRegularExpression(QStringLiteral("^qirn\\.pt\\."))); }
    Defaults& defaults_;
    std::map<QString, QByteArray> before_;
};

constexpr void (*kSections[])(const SelfTestWorld&) = {strokes,  blendModes,  undoRedo,       saveReopen,
                                                       recovery, persistence, canvasPipeline, quickPerformance};

} // namespace

int runSelfTest() {
    int argc = 1;
    char name[] = "QirnPaint";
    char* argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("qirn-paint-selftest-XXXXXX")));
    AppFolders::setBaseOverride(folder.path());
    SilentDesktop desktop;
    UserDefaults defaults;
    const DefaultsGuard guard(defaults);
    SelfTestReport report;
    report.heading();
    for (const auto section : kSections) {
        section({report, desktop, defaults, folder.path()});
        report.endSection();
    }
    report.result();
    AppFolders::setBaseOverride({});
    return report.failures() == 0 ? 0 : 1;
}

} // namespace qirn
