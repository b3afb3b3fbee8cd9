// Paints strokes of ten presets in the real window, by pen events with swelling pressure, and saves pictures of it in each
// theme at several zooms, of each tool's options, each panel, menu, sheet and further window, at the display's scale:
//     studio_pictures FOLDER [--rtl] [--pseudo TEXTS.ts]
// Right to left, or with every text accented and half as long again, which shows what has no room in other languages. A line
// is printed for each text that is clipped, and with --pseudo for each that lupdate did not find; the exit code tells of
// any.
#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/PendingTransform.h"
#include "brush/BrushLibrary.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "platform/Trigonometry.h"
#include "shell/help/PaintHelp.h"
#include "shell/options/ToolOptionsBar.h"
#include "support/Window.h"
#include "tools/ClippedTexts.h"
#include "tools/PseudoTexts.h"

#include <cstdio>

#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPlainTextEdit>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr std::pair<const char*, const char*> kSamples[] = {
    {"Ink Brush", "#14213D"},  {"Charcoal", "#3A3F47"},   {"Calligraphy Ink", "#B3001B"},
    {"Marker", "#00A3E0"},     {"Soft Round", "#6A0DAD"}, {"Chalk", "#E07A1F"},
    {"Dry Brush", "#4F6D2F"},  {"Spray Can", "#FF1F8F"},  {"Pastel Grain", "#0077B6"},
    {"Studio Pen", "#0B0C10"},
};

/// An S-curve within a cell, swelling from a light touch and back.
std::vector<StrokePoint> swellingCurve(double left, double middle, double width, double height) {
    constexpr double kPi = 3.14159265358979323846;
    std::vector<StrokePoint> points;
    constexpr int kPoints = 90;
    for (int i = 0; i <= kPoints; ++i) {
        const double t = static_cast<double>(i) / kPoints;
        const double pressure = 0.08 + 0.92 * sineCosine(kPi * t).sine;
        points.emplace_back(left + t * width, middle + height * sineCosine(2.5 * kPi * t).sine, pressure, 0,
                            0, t);
    }
    return points;
}

void paintTenPresets(Window& window) {
    const QPointingDevice pen("pen", 1, QInputDevice::DeviceType::Stylus, QPointingDevice::PointerType::Pen,
                              QInputDevice::Capability::Pressure, 1, 1);
    int i = 0;
    for (const auto& [preset, color] : kSamples) {
        window.model.brushes().choose(*BrushLibrary::named(preset));
        window.set(&BrushSettings::size, std::min(window.model.brushes().activeBrush().size * 2, 120.0));
        window.model.colors().setPrimary(*PaintColor::fromHex(color));
        sendStroke(window.canvas(), pen, swellingCurve(110 + 900 * (i / 5), 130 + 205 * (i % 5), 780, 52));
        if (++i == 5) LayerEdits::addLayer(window.model);
    }
}

/// The window with a menu of it open.
QPixmap pictureOf(Window& window, QMenu& open) {
    QCoreApplication::processEvents();
    QPixmap picture = window.view.grab();
    const QAction* title = open.menuAction();
    open.popup(window.view.menuBar()->mapToGlobal(
        window.view.menuBar()->actionGeometry(const_cast<QAction*>(title)).bottomLeft()));
    QCoreApplication::processEvents();
    QPainter painter(&picture);
    painter.drawPixmap(window.view.mapFromGlobal(open.pos()), open.grab());
    open.close();
    return picture;
}

struct NamedSheet {
    const char* name;
    PaintSheet sheet;
};
const NamedSheet kSheets[] = {
    {"sheet-text", {PaintSheet::Kind::text, {300, 200}}},
    {"sheet-new-canvas", {PaintSheet::Kind::newDocument}},
    {"sheet-export", {PaintSheet::Kind::exportPicture}},
    {"sheet-image-size", {PaintSheet::Kind::imageSize}},
    {"sheet-canvas-size", {PaintSheet::Kind::canvasSize}},
    {"sheet-recovery", {PaintSheet::Kind::recovery}},
};

/// Saves pictures into a folder, remembers whether all of them could be, and tells what is clipped in them. Of those that
/// are only looked at it saves what has something clipped.
class Album {
public:
    explicit Album(const QString& folder) : folder_(folder), isWhole_(folder_.mkpath(QStringLiteral("."))) {}

    void save(const QString& name, const QPixmap& picture) {
        isWhole_ = picture.save(folder_.filePath(name + QStringLiteral(".png"))) && isWhole_;
    }
    void save(const QString& name, QWidget& widget) {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents(); // layouts in layouts ask again
        const QString zoom = QStringLiteral("%1-%2").arg(name).arg(qRound(QrZoom::value() * 100));
        const QStringList lines = clippedIn(widget);
        for (const QString& line : lines) tell(zoom, line);
        if (!onlyLooks)
            save(name, widget.grab());
        else if (!lines.isEmpty())
            save(zoom, widget.grab());
    }
    bool onlyLooks = false;
    bool isWhole() const { return isWhole_; }
    void tell(const QString& name, const QString& line) {
        if (told_.contains(line)) return;
        told_ << line;
        std::printf("%s: %s\n", qPrintable(name), qPrintable(line));
    }
    bool hasTold() const { return !told_.isEmpty(); }

private:
    QDir folder_;
    bool isWhole_;
    QStringList told_;
};

void pictureThemesAndZooms(Window& window, Album& album) {
    for (const QirnTheme& theme : QirnThemes::all()) {
        QirnThemes::setCurrentID(theme.id);
        for (const int level : {85, 100, 150, 200}) {
            QrZoom::setValue(level / 100.0);
            album.save(QStringLiteral("window-%1-%2").arg(theme.id).arg(level), window.view);
        }
    }
    QirnThemes::setCurrentID(QirnThemes::kDefaultID);
    QrZoom::setValue(1);
}

void pictureTheParts(Window& window, Album& album) {
    for (const ToolRow& row : kTools) {
        window.model.setTool(row.tool);
        QCoreApplication::processEvents();
        album.save(QStringLiteral("options-") + QLatin1String(row.id),
                   *window.view.findChild<ToolOptionsBar*>());
    }
    window.model.transform().beginTransform();
    album.save("options-transform", *window.view.findChild<ToolOptionsBar*>());
    window.model.transform().cancelTransform();
    window.model.setTool(Tool::brush);
    for (const char* panel : {"colorPanel", "brushPanel", "palettesPanel"}) {
        window.view.findChild<QAction*>(panel)->trigger();
        QCoreApplication::processEvents();
        BackgroundQueue::previews().finish();
        album.save(QLatin1String(panel), window.view);
    }
    window.click("showOnion");
    album.save("onion", window.view);
    window.click("showOnion");
    if (album.onlyLooks) return;
    for (QAction* title : window.view.menuBar()->actions())
        album.save("menu-" + title->menu()->objectName().toLower(), pictureOf(window, *title->menu()));
}

/// Leaves safety copies of two pictures, the first of which was saved since.
void loseTwoPictures() {
    for (const char* name : {"Sea at dawn", "A name that is longer than the place for it in the list"}) {
        DocSession lost(std::make_unique<PaintDocument>(1600, 900, 72, PaintColor(0.2, 0.4, 0.6)), name, {},
                        QUuid::createUuid(), DocSession::Dirty::yes);
        QFile file(QDir(AppFolders::base()).filePath(lost.name));
        lost.fileURL = QUrl::fromLocalFile(file.fileName());
        Recovery::write(lost, Recovery::Synchronously::yes);
        if (!file.open(QIODevice::WriteOnly)) return; // it was saved since
        lost.copy.files.reset();
    }
}

void pictureSheets(Window& window, Album& album) {
    for (const NamedSheet& named : kSheets) {
        window.model.showSheet(named.sheet);
        if (auto* words = window.view.findChild<QPlainTextEdit*>())
            words->setPlainText("Ten brushes\nand a text");
        QCoreApplication::processEvents();
        BackgroundQueue::previews().finish();
        album.save(QLatin1String(named.name), window.view);
        window.model.closeSheet();
    }
}

/// Those that a command opens beside the main one.
void pictureOtherWindows(Window& window, Album& album) {
    for (const char* command : {"help", "about", "preferences"}) {
        window.view.findChild<QAction*>(command)->trigger();
        QCoreApplication::processEvents();
        for (QWidget* other : QApplication::topLevelWidgets()) {
            if (other == &window.view || !other->isVisible() || other->windowType() == Qt::Popup) continue;
            album.save(QStringLiteral("window-") + QLatin1String(command), *other);
            other->close();
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "Which folder are the pictures to go to?\n");
        return 1;
    }
    const QStringList options = app.arguments().mid(2);
    PseudoTexts pseudo;
    const qsizetype texts = options.indexOf("--pseudo") + 1;
    if (texts > 0) QCoreApplication::installTranslator(&pseudo);
    QGuiApplication::setLayoutDirection(options.contains("--rtl") ? Qt::RightToLeft : Qt::LeftToRight);
    Album album(QString::fromLocal8Bit(argv[1]));
    QirnKit::install("Qirn Paint", PaintHelp::topics());
    Window window;
    window.canvas().strokeSeed = [] { return uint64_t{1}; };
    window.model.pictures().newDocument(1920, 1080, 72, PaintColor(0.97, 0.955, 0.92), "Ten brushes");
    window.model.pictures().close(*window.model.pictures().sessions().front());
    QCoreApplication::processEvents();
    paintTenPresets(window);
    album.save("studio", window.view);
    pictureThemesAndZooms(window, album);
    loseTwoPictures();
    for (const int level : {100, 85, 150, 200}) {
        QrZoom::setValue(level / 100.0);
        album.onlyLooks = level != 100;
        pictureTheParts(window, album);
        pictureSheets(window, album);
        pictureOtherWindows(window, album);
    }
    if (texts > 0)
        for (const QString& text : pseudo.missingIn(options.value(texts)))
            album.tell(QStringLiteral("lupdate misses"), text);
    return album.isWhole() && !album.hasTold() ? 0 : 1;
}
