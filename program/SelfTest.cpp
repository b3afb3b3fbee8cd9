#include "program/SelfTest.h"

#include "app/canvas/CanvasView.h"
#include "app/desktop/AppFolders.h"
#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Desktop.h"
#include "app/desktop/Store.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "app/tools/ToolTable.h"
#include "brush/BrushLibrary.h"
#include "kit/QirnKit.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "program/SelfTestEngine.h"
#include "program/SelfTestHelp.h"

#include <cmath>

#include <QApplication>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QTemporaryDir>

namespace qirn {

namespace {

/// A desktop without a person: every question is cancelled.
class SilentDesktop final : public Desktop {
public:
    std::optional<SavePlace> saveFile(const SaveQuestion&) override { return std::nullopt; }
    QStringList openFiles(const QString&, const QList<FileType>&, Several) override { return {}; }
    void noteUsedFile(const QString&) override {}
    int ask(const QString&, const QString&, const QStringList&, int cancelButton, int) override {
        return cancelButton;
    }
    void beep() override {}
    void noteRecentFile(const QString&) override {}
    const QMimeData& clipboard() override { return *clipboard_; }
    void setClipboard(std::unique_ptr<QMimeData> content) override { clipboard_ = std::move(content); }

private:
    std::unique_ptr<QMimeData> clipboard_ = std::make_unique<QMimeData>();
};

struct SelfTestWorld {
    SelfTestReport& report;
    SilentDesktop& desktop;
    Store& store;

    void check(const char* name, bool passed) const { report.check(QString::fromUtf8(name), passed); }
};

void recovery(const SelfTestWorld& world) {
    auto session = std::make_unique<DocSession>(selfTestPicture(), QStringLiteral("Lost work"), QUrl(),
                                                QUuid::createUuid(), DocSession::Dirty::yes);
    session->doc().commit(QStringLiteral("Paint"));
    const QUuid id = session->id;
    const uint64_t fingerprint = session->doc().fingerprint();
    Recovery::write(*session, Recovery::Synchronously::yes);
    world.check("An open picture's copy is not offered", Recovery::pending({}).empty());
    session.reset(); // not closed
    const auto found = Recovery::pending({});
    world.check("A safety copy is found after a crash", found.size() == 1 && found[0].id == id);
    if (found.empty()) return;
    world.check("The list shows a preview", !found[0].thumbnail().isNull());
    const SessionRef restored = Recovery::restore(found[0]);
    world.check("The recovered picture is the one that was lost",
                restored->doc().fingerprint() == fingerprint);
    world.check("It counts as unsaved",
                restored->isDirty() && restored->name == QStringLiteral("Lost work (recovered)"));
    Recovery::discard(*restored);
    BackgroundQueue::files().finish();
    world.check("A discarded copy is gone", !QFile::exists(Recovery::fileURL(id)));
}

void persistence(const SelfTestWorld& world) {
    {
        PaintModel model(PaintModel::LoadStores::no, world.desktop, world.store);
        model.brushes().choose(*BrushLibrary::named(QStringLiteral("Finger Blend")));
        model.colors().pick(PaintColor(0.25, 0.5, 0.75), Colors::AddRecent::yes);
        PaintPrefs prefs = model.prefs();
        prefs.undoSteps = 60;
        model.setPrefs(prefs);
        model.brushes().saveBrushAsNew(QStringLiteral("Self-test brush"));
        model.palettes().addToPalette(PaintColor(0.25, 0.5, 0.75));
        model.setInspectorTab(InspectorTab::palettes);
        model.saveState();
        QirnKit::useStore(world.store.forKit());
        QirnThemes::setCurrentID(QStringLiteral("rose-gold"));
        QrZoom::setValue(1.5);
    }
    const PaintModel model(PaintModel::LoadStores::yes, world.desktop, world.store);
    world.check("The tool and its brush come back after a restart",
                model.tool() == Tool::smudge &&
                    model.brushes().activeBrush().name == QStringLiteral("Self-test brush"));
    world.check("The colors come back", model.colors().primary() == PaintColor(0.25, 0.5, 0.75) &&
                                            model.colors().recent().size() == 1);
    world.check("The panel that shows comes back", model.inspectorTab() == InspectorTab::palettes);
    world.check("The preferences come back", model.prefs().undoSteps == 60);
    world.store.flush();
    {
        Store reopened(AppFolders::storeFile());
        QirnKit::useStore(reopened.forKit());
        world.check("The theme comes back", QirnThemes::current().name == QStringLiteral("Rose Gold"));
        world.check("The interface zoom comes back", QrZoom::value() == 1.5);
        QirnKit::useStore(KitStore::forThisRun());
        QirnThemes::setCurrentID(QirnThemes::kDefaultID);
        QrZoom::setValue(1);
    }
    world.check("The user's presets come back", model.brushes().userBrushes().size() == 1);
    world.check("An edit of a built-in palette went to a copy, which comes back",
                model.palettes().userPalettes().size() == 1 &&
                    model.palettes().currentPalette() == model.palettes().userPalettes()[0] &&
                    model.palettes().currentPalette().colors.size() ==
                        model.palettes().allPalettes()[0].colors.size() + 1);
}

void canvasPipeline(const SelfTestWorld& world) {
    PaintModel model(PaintModel::LoadStores::no, world.desktop, world.store);
    CanvasView canvas(model, kToolTable);
    canvas.resize(900, 700);
    model.pictures().newDocument(400, 300, 72, PaintColor::white(), QStringLiteral("Canvas"));
    canvas.show();
    canvas.setZoom(1.6);
    canvas.setRotation(37);
    canvas.toggleFlipView();
    const QPointF place(120, 200), back = canvas.canvasPoint(canvas.viewPoint(place));
    world.check("The pen maps back exactly in a turned, mirrored view",
                std::hypot(back.x() - place.x(), back.y() - place.y()) < 1e-6);
    model.brushes().setActiveBrush(selfTestBrush(24));
    const QPointF view = canvas.viewPoint(place);
    const QPointF at = QPointF(view.x(), canvas.height() * canvas.devicePixelRatioF() - view.y()) /
                       canvas.devicePixelRatioF();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, canvas.mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(&canvas, &event);
    }
    const PaintDocument& doc = model.current()->doc();
    world.check("A press on the canvas paints under the pointer",
                doc.activeLayer().pixel(120, 200)[3] == 255 && doc.activeLayer().pixel(150, 200)[3] == 0);
    world.check("It is one undo step",
                doc.undoDepth() == 1 && doc.undoName() == QStringLiteral("Brush Stroke"));
    canvas.fit();
    canvas.grab();
    const int64_t composited = canvas.presentation().tilesComposited();
    canvas.setZoom(3);
    canvas.grab();
    canvas.setRotation(70);
    canvas.grab();
    world.check("Zoom and rotation composite nothing again",
                canvas.presentation().tilesComposited() == composited);
}

void presetsAndHelp(const SelfTestWorld& world) {
    SelfTestEngine::presets(world.report);
    selfTestHelp(world.report);
}

/// Runs a section that needs nothing of the application.
template <auto kSection> void inEngine(const SelfTestWorld& world) {
    kSection(world.report);
}

// In the order in which they run.
constexpr void (*kSections[])(const SelfTestWorld&) = {
    inEngine<SelfTestEngine::strokes>,
    inEngine<SelfTestEngine::blendModes>,
    inEngine<SelfTestEngine::bucket>,
    inEngine<SelfTestEngine::undoRedo>,
    inEngine<SelfTestEngine::saveReopen>,
    inEngine<SelfTestEngine::exports>,
    inEngine<SelfTestEngine::palettes>,
    inEngine<SelfTestEngine::canvasOps>,
    recovery,
    persistence,
    presetsAndHelp,
    canvasPipeline,
    inEngine<SelfTestEngine::quickPerformance>,
};

} // namespace

int runSelfTest() {
    int argc = 1;
    char name[] = "QirnPaint";
    char* argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("qirn-paint-selftest-XXXXXX")));
    AppFolders::setBaseOverride(folder.path());
    SilentDesktop desktop;
    // A store of its own: the user's is not even opened, so that nothing can interrupt putting it back.
    Store store(AppFolders::storeFile());
    SelfTestReport report;
    report.heading();
    for (const auto section : kSections) {
        section({report, desktop, store});
        report.endSection();
    }
    report.result();
    AppFolders::setBaseOverride({});
    return report.failures() == 0 ? 0 : 1;
}

} // namespace qirn
