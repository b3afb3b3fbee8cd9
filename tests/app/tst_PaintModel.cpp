#include "app/desktop/RecentFiles.h"
#include "app/model/CanvasStatus.h"
#include "app/model/Clipboard.h"
#include "app/model/OpacityPreview.h"
#include "app/model/Palettes.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "support/FullDisk.h"
#include "support/Studio.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr IRect kDot{20, 20, 10, 10};

} // namespace

class tst_PaintModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Choices
    void recentColorsAreFewAndDistinct() {
        std::vector<PaintColor> recent;
        for (int i = 0; i < 40; ++i)
            recent = withRecent(recent, PaintColor::fromBytes(static_cast<uint8_t>(i % 25), 0, 0));
        QCOMPARE(recent.size(), std::size_t{18});
        QCOMPARE(recent[0], PaintColor::fromBytes(14, 0, 0));
        recent = withRecent(recent, recent[5]);
        QCOMPARE(recent.size(), std::size_t{18});
        QCOMPARE(std::count(recent.begin(), recent.end(), recent[0]), 1);
    }

    void choosingABrushChoosesItsTool() {
        Studio studio;
        const BrushSettings before = studio.model.brushes().activeBrush();
        studio.model.brushes().choose(*BrushLibrary::named("Soft Eraser"));
        QCOMPARE(studio.model.tool(), Tool::eraser);
        QCOMPARE(studio.model.brushes().activeBrush().name, "Soft Eraser");
        studio.model.setTool(Tool::hand); // other tools edit the brush tool's
        QCOMPARE(studio.model.brushes().activeBrush(), before);
        studio.set(&BrushSettings::size, 5000);
        studio.model.setTool(Tool::brush);
        QCOMPARE(studio.model.brushes().activeBrush().size, 1000.0);
        studio.model.brushes().resetBrush();
        QCOMPARE(studio.model.brushes().activeBrush(), *BrushLibrary::named("Studio Pen"));
        for (const BrushSettings& smudge : studio.model.brushes().brushesFor(Tool::smudge))
            QCOMPARE(smudge.kind, BrushKind::smudge);
        QCOMPARE(studio.model.brushes().brushesFor(Tool::lasso).size(), std::size_t{24});
    }

    void choicesAndBrushesSurviveARestart() {
        Studio studio;
        studio.model.brushes().saveBrushAsNew("Näss ✏️");
        QCOMPARE(studio.model.messages().hud(), "Saved brush \"Näss ✏️\"");
        studio.set(&BrushSettings::size, 77);
        studio.model.brushes().updateUserBrush();
        const BrushSettings brush = studio.model.brushes().activeBrush();
        QCOMPARE(brush.category, "My Brushes");
        studio.model.setTool(Tool::smudge);
        studio.set(&BrushSettings::size, 123);
        studio.model.colors().pick(PaintColor(0.25, 0.5, 0.75), Colors::AddRecent::yes);
        studio.set(&PaintPrefs::undoSteps, 50);
        studio.model.flushState();
        PaintModel again(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QCOMPARE(again.tool(), Tool::smudge);
        QCOMPARE(again.brushes().activeBrush().size, 123.0);
        QCOMPARE(again.colors().primary(), PaintColor(0.25, 0.5, 0.75));
        QCOMPARE(again.colors().recent().size(), std::size_t{1});
        QCOMPARE(again.prefs().undoSteps, int64_t{50});
        QCOMPARE(again.brushes().userBrushes(), std::vector{brush});
        const PaintModel fresh(PaintModel::LoadStores::no, studio.desktop, studio.store);
        Store file(AppFolders::storeFile()); // is written when the program is made to end
        PaintModel ended(PaintModel::LoadStores::no, studio.desktop, file);
        ended.safety().keepWork();
        QVERIFY(Store(AppFolders::storeFile()).json("qirn.pt.colors"));
        QVERIFY(fresh.tool() == Tool::brush && fresh.brushes().userBrushes().empty());
        again.brushes().choose(brush);
        for (const bool keeps : {true, false}) {
            studio.desktop.answers = {keeps};
            again.brushes().deleteUserBrush(brush);
            QCOMPARE(again.brushes().userBrushes().size(), std::size_t{keeps});
        }
        QCOMPARE(studio.desktop.asked.back().title, "Delete the brush \"Näss ✏️\"?");
        QCOMPARE(again.brushes().activeBrush().name, "Studio Pen");
    }

    void oneBadValueCostsOnlyItself() {
        Studio studio;
        studio.store.setText("qirn.pt.tool", "eraser");
        studio.store.setText("qirn.pt.colors", "[{\"r\":1,\"g\":0,\"b\":0,\"a\":1}]");
        studio.store.setText("qirn.pt.toolBrushes", "{\"brush\":[[[");
        studio.store.set("qirn.pt.prefs", {{"undoSteps", 20}});
        studio.store.set(
            "qirn.pt.fill",
            {{"tolerance", 1000}, {"contiguous", false}, {"sampleAllLayers", true}, {"expand", -7}});
        const PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
        QCOMPARE(model.tool(), Tool::eraser);
        QCOMPARE(model.colors().primary(), PaintColor(0.7, 0.02, 0.08));
        QCOMPARE(model.brushes().activeBrush().name, "Hard Eraser");
        QCOMPARE(model.prefs(), PaintPrefs()); // a record that lacks a key counts for nothing
        QCOMPARE(model.options().fill, (FillOptions{255, false, true, 0}));
        // What could not be read is still there.
        QCOMPARE(studio.store.text("qirn.pt.toolBrushes"), "{\"brush\":[[[");
    }

    // Pictures
    void theStarterGivesWayToTheFirstFileWhichIsNeverOpenedTwice() {
        OwnWorld world;
        world.model.pictures().ensureDocument();
        QCOMPARE(world.session().name, "Untitled");
        QCOMPARE(world.doc().grid(), TileGrid(1920, 1080));
        QVERIFY(!world.session().isDirty());
        PaintDocument picture(30, 20, 300, PaintColor::white());
        writeFile(world.path("a.qirnpaint"), PaintFile::encode(picture));
        world.desktop.openPaths = {{world.path("a.qirnpaint"), world.path("./a.qirnpaint")}};
        world.model.files().openPanel();
        QCOMPARE(world.model.pictures().sessions().size(), std::size_t{1});
        QCOMPARE(world.session().name, "a");
        DocSession* opened = world.model.current();
        world.model.pictures().newDocument(60, 40, 72, std::nullopt, {});
        QCOMPARE(world.model.pictures().sessions().size(), std::size_t{2});
        world.model.files().open(world.path("a.qirnpaint"));
        QCOMPARE(world.model.current(), opened);
    }

    void twoPicturesHaveTheirOwnViews() {
        Studio studio;
        DocSession& first = studio.session();
        studio.canvas.setZoom(3);
        studio.canvas.setRotation(20);
        studio.model.pictures().newDocument(100, 100, 72, std::nullopt, "Second");
        QCOMPARE(studio.canvas.session()->name, "Second");
        QVERIFY(studio.session().view != first.view);
        studio.penStroke({{50, 50}});
        QVERIFY(first.doc().activeLayer().isEmpty());
        studio.model.pictures().select(first);
        QCOMPARE(studio.canvas.session(), &first);
        QCOMPARE(first.view.zoom, 3.0);
        QCOMPARE(studio.model.status().view().rotation, 20.0);
    }

    void aNameThatIsNoTextIsKept() {
        for (const char* bytes :
             {"caf\xe9.qirnpaint", "\x93\xfa\x96\x7b \xe6\x97\xa5.qirnpaint", "\xed\xb3\xa9.qirnpaint"}) {
            Studio studio;
            QDir(studio.path({})).mkdir("own");
            const QByteArray folder = QFile::encodeName(studio.path("own/"));
            const std::filesystem::path own((folder + bytes).toStdString());
            std::ofstream(own) << PaintFile::encode(studio.doc()).toStdString();
            QMimeData offer;
            offer.setData("text/uri-list", "file://" + (folder + bytes).toPercentEncoding("/"));
            QVERIFY(studio.model.clipboard().drop(offer));
            QTRY_COMPARE(studio.model.pictures().sessions().size(), std::size_t{2});
            studio.fill(kDot);
            QVERIFY(studio.model.files().save(nullptr, PictureFiles::SaveAs::no));
            std::stringstream saved;
            saved << std::ifstream(own).rdbuf();
            QCOMPARE(PaintFile::decode(bytesOf(QByteArray::fromStdString(saved.str())))->fingerprint(),
                     studio.doc().fingerprint());
            const std::filesystem::directory_iterator names(folder.toStdString());
            QCOMPARE(std::distance(begin(names), end(names)), std::ptrdiff_t{1}); // and no other
            std::filesystem::remove_all(folder.toStdString());                    // which the toolkit cannot
        }
    }

    void withoutACopyAPictureIsNotClosedUnasked() {
        for (const bool isFull : {true, false}) { // the disk; or there can be no Trash
            Studio studio;
            studio.fill(kDot);
            const QUuid id = studio.session().id;
            QDir().mkpath(studio.path("data"));
            if (!isFull) writeFile(studio.path("data/Trash"), {});
            for (const bool closes : {false, true}) {
                std::optional<FullDisk> full;
                if (isFull) full.emplace();
                studio.desktop.answers = {2, closes};
                studio.model.pictures().closeCurrent();
                full.reset();
                const ScriptedDesktop::Question& asked = studio.desktop.asked.back();
                QCOMPARE(asked.title, "Close \"Test\" without a copy?");
                QCOMPARE(asked.text, isFull ? "The file could not be written (File too large)."
                                            : "The folder does not exist.");
                QCOMPARE(asked.buttons, QStringList({"Cancel", "Close"}));
                QCOMPARE(studio.session().id != id, closes);
                QCOMPARE(QFile::exists(Recovery::fileURL(id)), !closes && !isFull); // stays until then
            }
        }
    }

    void closingOthersLeavesATransformFloatingAndQuittingAsksForEach() {
        Studio studio;
        const SessionRef other = studio.model.pictures().sessions().front();
        studio.fill(kDot);
        studio.model.pictures().newDocument(50, 50, 72, std::nullopt, "Two");
        studio.fill({5, 5, 10, 10});
        studio.model.transform().beginTransform();
        studio.desktop.answers = {0};
        studio.desktop.savePaths = {studio.path("other.qirnpaint")};
        QVERIFY(studio.model.pictures().close(*other) && studio.model.pictures().sessions().size() == 1);
        QVERIFY(studio.model.transform().state() && studio.doc().undoDepth() == 1);
        studio.model.pictures().newDocument(50, 50, 72, std::nullopt, "Three");
        studio.fill({5, 5, 10, 10});
        studio.desktop.answers = {0, 1};
        studio.desktop.savePaths = {studio.path("one.qirnpaint")};
        QVERIFY(!studio.model.pictures().shouldQuit());
        QVERIFY(QFile::exists(studio.path("one.qirnpaint")));
        QCOMPARE(studio.model.pictures().sessions().size(), std::size_t{1});
        QCOMPARE(studio.session().name, "Three");
        // And one with a copy on its way, saved by now.
        studio.model.pictures().add(std::make_shared<DocSession>(randomDocument(1200, 900, 4, 3), "Four"));
        Recovery::write(studio.session(), Recovery::Synchronously::no);
        studio.desktop.answers = {2};
        QVERIFY(studio.model.pictures().shouldQuit());
        QVERIFY(QDir(AppFolders::autosave()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void safetyCopiesAreWrittenAndRemoved() {
        Studio studio;
        const auto copies = [] {
            QCoreApplication::processEvents();
            BackgroundQueue::files().finish();
            QCoreApplication::processEvents();
            return QDir(AppFolders::autosave()).entryList({"*.qirnpaint"}).size();
        };
        const auto copiesAfterATick = [&] {
            studio.session().copy.taken.reset();
            studio.model.safety().autosaveTick();
            return copies();
        };
        QCOMPARE(copiesAfterATick(), 0); // nothing changed
        studio.fill(kDot);
        studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
        QCOMPARE(copiesAfterATick(), 0); // not in the middle of a stroke
        studio.set(&PaintPrefs::autosaveSeconds, 0);
        studio.penEvent(QEvent::TabletRelease, {50, 50}, 0);
        QCOMPARE(copiesAfterATick(), 0); // switched off
        studio.model.setPrefs(PaintPrefs());
        studio.penEvent(QEvent::TabletPress, {60, 50}, 1);
        QCOMPARE(copiesAfterATick(), 0);
        studio.penEvent(QEvent::TabletRelease, {60, 50}, 0);
        QVERIFY(!studio.model.safety().lastAutosaveText());
        QCOMPARE(copies(), 1); // right after the stroke
        QVERIFY(studio.model.safety().lastAutosaveText()->startsWith("Autosaved "));
        QVERIFY(studio.model.safety().isAutosaved(studio.session()));

        // Of the last commit, and of the next one as soon as that is there.
        studio.model.opacity().show(1, 0.5);
        QVERIFY(studio.model.safety().isAutosaved(studio.session()));
        studio.model.opacity().commit();
        QVERIFY(!studio.model.safety().isAutosaved(studio.session()));
        QCOMPARE(copiesAfterATick(), 1);
        QVERIFY(studio.model.safety().isAutosaved(studio.session()));
        studio.desktop.savePaths = {studio.path("a.qirnpaint")};
        studio.model.files().save(nullptr, PictureFiles::SaveAs::no);
        QCOMPARE(copiesAfterATick(), 0);
    }

    void aCopyCountsOnceItIsOnDisk() {
        Studio studio;
        Safety& safety = studio.model.safety();
        studio.fill(kDot);
        const auto saveFails = [&] { // what its message ends with
            studio.desktop.savePaths = {studio.path("no such folder/a.qirnpaint")};
            studio.model.files().save(nullptr, PictureFiles::SaveAs::no);
            return studio.desktop.asked.back().text.section("\n\n", 1);
        };
        const auto tick = [&] {
            safety.autosaveTick();
            BackgroundQueue::files().finish();
            QCoreApplication::processEvents();
        };
        for (int round = 0; round < 2; ++round) {
            for (int failures = 1; failures <= 4; ++failures) { // each is tried again at the next tick
                const FullDisk full;
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Qirn Paint autosave failed: "));
                tick();
                QCOMPARE(safety.lastAutosaveText(), "Not autosaved");
                QCOMPARE(studio.model.messages().hud() ==
                             "Couldn't autosave: The file could not be written (File too large).",
                         failures == 3);
                studio.model.messages().flash("Another");
            }
            QCOMPARE(saveFails(), "Your work is still open.");
            tick();
            QVERIFY(safety.lastAutosaveText()->startsWith("Autosaved "));
            studio.session().originalPath = "/lost/a.qirnpaint"; // as of a recovered one
            QCOMPARE(saveFails(), "Your work is still open and autosaved.");
            QCOMPARE(studio.desktop.proposedFolder, "/lost");
            studio.fill(kDot);
            QCOMPARE(saveFails(), "Your work is still open.");
            studio.session().copy.taken.reset();
        }
    }

    void theRecentListKeepsWhatItHolds() {
        const QString once = recentListWith({}, "/a b/ä&.qirnpaint", "2026-01-02T03:04:05Z");
        QVERIFY(once.contains("href=\"file:///a%20b/%C3%A4&amp;.qirnpaint\""));
        QVERIFY(once.contains("type=\"image/x-qirnpaint\"") && !once.contains("count=\"2\""));
        QVERIFY(recentListWith({}, "/b.JPG", {}).contains("type=\"image/jpeg\""));
        // Used again: others' words in the entry stay.
        QString others = once;
        others.replace("<bookmark:applications>\n",
                       "<bookmark:applications>\n<bookmark:application name=\"X\"/>\n");
        const QString again = recentListWith(others, "/a b/ä&.qirnpaint", "2027-05-06T07:08:09Z");
        QVERIFY(again.contains(
            "added=\"2026-01-02T03:04:05Z\" modified=\"2027-05-06T07:08:09Z\" visited=\"2027"));
        QVERIFY(again.contains("name=\"X\"") &&
                again.contains("modified=\"2027-05-06T07:08:09Z\" count=\"2\""));
        const QString others2 = recentListWith({}, "/mom's", {});
        QVERIFY(
            recentListWith(QString(others2).replace("&apos;s\"", "'s\""), "/mom's", {}).count("<bookmark ") ==
            1);
        QVERIFY(again.count("<bookmark ") == 1 && again.count("name=\"Qirn Paint\"") == 1);
        const QString twice = recentListWith(once, "/c.qirnpaint", "2026-01-02T03:04:05Z");
        QVERIFY(twice.startsWith(once.chopped(8)));
        QCOMPARE(recentListWith("something else", "/c", {}), "something else");
    }

    // Commands
    void aPreviewedOpacityIsOneStepWhateverComesNext() {
        static const std::vector<QPointF> kWay{{50, 50}, {90, 90}};
        const std::pair<const char*, void (*)(Studio&)> nexts[] = {
            {"rest", [](Studio& s) { s.model.opacity().commit(); }},
            {"undo", [](Studio& s) { s.model.undo(); }},
            {"redo", [](Studio& s) { s.model.redo(); }},
            {"a stroke", [](Studio& s) { s.penStroke(kWay); }},
            {"a stroke dropped",
             [](Studio& s) {
                 s.penEvent(QEvent::TabletPress, kWay[0], 1);
                 s.key(Qt::Key_Escape);
             }},
            {"a shape",
             [](Studio& s) {
                 s.model.setTool(Tool::shape);
                 s.penStroke(kWay);
             }},
            {"floating pixels", [](Studio& s) { s.model.transform().beginTransform(); }},
            {"another layer", [](Studio& s) { LayerEdits::setActiveLayer(s.model, 0); }},
            {"another layer's opacity", [](Studio& s) { s.model.opacity().show(0, 0.5); }},
            {"a command", [](Studio& s) { LayerEdits::addLayer(s.model); }},
            {"another picture",
             [](Studio& s) { s.model.pictures().newDocument(60, 40, 72, std::nullopt, {}); }},
        };
        for (const auto& [name, next] : nexts) {
            Studio studio;
            studio.fill(kDot);
            studio.fill({40, 40, 10, 10});
            studio.model.transform().beginTransform(); // ends with the first preview
            studio.model.transform().updateTransform([](TransformState& state) { state.center.rx() += 30; });
            studio.model.opacity().show(1, 1);
            QCOMPARE(studio.doc().undoName(), "Transform");
            const uint64_t before = studio.doc().fingerprint();
            for (const double opacity : {0.7, 0.4}) studio.model.opacity().show(1, opacity);
            PaintDocument& doc = studio.doc();
            next(studio);
            while (doc.undoDepth() > 3) doc.undo();
            QVERIFY2(doc.fingerprint() == before && doc.redoName() == "Layer Opacity", name);
            studio.model.opacity().commit(); // as the slider has come to rest
            QVERIFY2(doc.canRedo(), name);
        }
    }

    void refusalsLeaveNoStep() {
        Studio studio;
        studio.model.undo();
        QVERIFY(studio.desktop.beeps == 1 && !studio.model.messages().hud());
        LayerEdits::setActiveLayer(studio.model, 0);
        LayerEdits::mergeDown(studio.model);
        QCOMPARE(studio.model.messages().hud(), "There is no layer below to merge into");
        LayerEdits::setActiveLayer(studio.model, 1);
        studio.fill(kDot);
        studio.desktop.answers = {1};
        LayerEdits::deleteLayer(studio.model);
        QCOMPARE(studio.desktop.asked.back().title, "Delete the layer \"Layer 1\"?");
        QCOMPARE(studio.doc().layerCount(), int64_t{2});
        LayerEdits::toggleLock(studio.model);
        LayerEdits::clearLayer(studio.model);
        QCOMPARE(studio.model.messages().hud(), "The layer \"Layer 1\" is locked");
        studio.model.undo();
        QCOMPARE(studio.model.messages().hud(), "Undo Lock");
        studio.model.redo();
        QCOMPARE(studio.model.messages().hud(), "Redo Lock");
        studio.model.redo();
        QCOMPARE(studio.desktop.beeps, 2);
    }
};

QIRN_TEST(tst_PaintModel)
#include "tst_PaintModel.moc"
