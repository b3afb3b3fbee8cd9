#include "BackgroundQueue.h"
#include "RecentColors.h"
#include "RecentFiles.h"
#include "Recovery.h"
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/Pictures.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <QDir>
#include <QFile>

using namespace qirn;
using namespace qirn::test;

namespace {

void paintDot(Studio& studio, int64_t at = 20) {
    paintRect(studio.doc(), studio.layer(), {at, at, 10, 10}, {200, 0, 0, 255});
    studio.doc().commit(QStringLiteral("Dot"));
}

} // namespace

class tst_PaintModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Choices
    void recentColoursAreFewAndDistinct();
    void choosingAnEraserSwitchesTools();
    void otherToolsEditTheBrushToolsBrush();
    void userBrushesComeAndGo();
    void choicesSurviveARestart();
    void oneBadValueCostsOnlyItself();
    void aBrushFileThatCannotBeReadIsMovedAside();
    void messagesPass();

    // Pictures
    void theStarterGivesWayToTheFirstFile();
    void twoPicturesHaveTheirOwnViews();
    void aPictureIsSavedClosedAndOpenedAgain();
    void aFileIsNeverOpenedTwice();
    void aNameThatIsNoTextIsKept();
    void aFailedSaveLosesNothing();
    void aDamagedFileIsToldInWords();
    void closingAsksAboutUnsavedWork_data();
    void closingAsksAboutUnsavedWork();
    void withoutACopyAPictureIsNotClosedUnasked_data();
    void withoutACopyAPictureIsNotClosedUnasked();
    void quittingAsksForEachAndCanBeCancelled();
    void closingTheLastLeavesAFreshPicture();
    void closingAnotherTabLeavesTheTransformFloating();
    void safetyCopiesAreWrittenAndRemoved();
    void theRecentListKeepsWhatItHolds();

    // Commands
    void layerCommandsAreUndoSteps();
    void aPreviewedOpacityIsOneStepWhateverComesNext();
    void refusalsLeaveNoStep();
    void undoTellsWhatItDid();
};

void tst_PaintModel::recentColoursAreFewAndDistinct() {
    std::vector<PaintColor> recent;
    for (int i = 0; i < 40; ++i)
        recent = withRecent(recent, PaintColor::fromBytes(static_cast<uint8_t>(i % 25), 0, 0));
    QCOMPARE(recent.size(), std::size_t{18});
    QCOMPARE(recent[0], PaintColor::fromBytes(14, 0, 0));
    recent = withRecent(recent, recent[5]);
    QCOMPARE(recent.size(), std::size_t{18});
    QCOMPARE(std::count(recent.begin(), recent.end(), recent[0]), 1);
}

void tst_PaintModel::choosingAnEraserSwitchesTools() {
    Studio studio;
    const BrushSettings before = studio.model.activeBrush();
    studio.model.choose(*BrushLibrary::named(QStringLiteral("Soft Eraser")));
    QCOMPARE(studio.model.tool(), Tool::eraser);
    QCOMPARE(studio.model.activeBrush().name, QStringLiteral("Soft Eraser"));
    studio.model.setTool(Tool::brush);
    QCOMPARE(studio.model.activeBrush(), before);
}

void tst_PaintModel::otherToolsEditTheBrushToolsBrush() {
    Studio studio;
    studio.model.setTool(Tool::hand);
    BrushSettings brush = studio.model.activeBrush();
    brush.size = 5000;
    studio.model.setActiveBrush(brush);
    studio.model.setTool(Tool::brush);
    QCOMPARE(studio.model.activeBrush().size, 1000.0);
    studio.model.resetBrush();
    QCOMPARE(studio.model.activeBrush(), *BrushLibrary::named(QStringLiteral("Studio Pen")));
    for (const BrushSettings& smudge : studio.model.brushesFor(Tool::smudge))
        QCOMPARE(smudge.kind, BrushKind::smudge);
    QCOMPARE(studio.model.brushesFor(Tool::lasso).size(), std::size_t{24});
}

void tst_PaintModel::userBrushesComeAndGo() {
    Studio studio;
    studio.model.saveBrushAsNew(QStringLiteral("Näss ✏️"));
    QCOMPARE(studio.model.hud(), QStringLiteral("Saved brush \"Näss ✏️\""));
    BrushSettings brush = studio.model.activeBrush();
    QCOMPARE(brush.category, QStringLiteral("My Brushes"));
    brush.size = 77;
    studio.model.setActiveBrush(brush);
    studio.model.updateUserBrush();
    const auto stored = BrushFile::decode(bytesOf(bytesAt(AppFolders::brushesFile())));
    QVERIFY(stored && stored->size() == 1 && stored->front() == brush);
    studio.desktop.answers = {1, 0};
    studio.model.deleteUserBrush(brush);
    QCOMPARE(studio.model.userBrushes().size(), std::size_t{1});
    studio.model.deleteUserBrush(brush);
    QVERIFY(studio.model.userBrushes().empty());
    QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Delete the brush \"Näss ✏️\"?"));
    QCOMPARE(studio.model.activeBrush().name, QStringLiteral("Studio Pen"));
}

void tst_PaintModel::choicesSurviveARestart() {
    Studio studio;
    studio.model.setTool(Tool::smudge);
    BrushSettings brush = studio.model.activeBrush();
    brush.size = 123;
    studio.model.setActiveBrush(brush);
    studio.model.pick(PaintColor(0.25, 0.5, 0.75), PaintModel::AddRecent::yes);
    PaintPrefs prefs = studio.model.prefs();
    prefs.undoSteps = 50;
    studio.model.setPrefs(prefs);
    studio.model.saveBrushAsNew(QStringLiteral("Mine"));
    studio.model.saveState();
    const PaintModel again(PaintModel::LoadStores::yes, studio.desktop, studio.store);
    QCOMPARE(again.tool(), Tool::smudge);
    QCOMPARE(again.activeBrush().size, 123.0);
    QCOMPARE(again.primary(), PaintColor(0.25, 0.5, 0.75));
    QCOMPARE(again.recent().size(), std::size_t{1});
    QCOMPARE(again.prefs().undoSteps, int64_t{50});
    QCOMPARE(again.userBrushes().front().name, QStringLiteral("Mine"));
    const PaintModel fresh(PaintModel::LoadStores::no, studio.desktop, studio.store);
    QCOMPARE(fresh.tool(), Tool::brush);
    QVERIFY(fresh.userBrushes().empty());
}

void tst_PaintModel::oneBadValueCostsOnlyItself() {
    Studio studio;
    studio.store.setText(QStringLiteral("qirn.pt.tool"), QStringLiteral("eraser"));
    studio.store.setText(QStringLiteral("qirn.pt.colors"),
                         QStringLiteral("[{\"r\":1,\"g\":0,\"b\":0,\"a\":1}]"));
    studio.store.setText(QStringLiteral("qirn.pt.toolBrushes"), QStringLiteral("{\"brush\":[[["));
    studio.store.set(QStringLiteral("qirn.pt.prefs"), {{"undoSteps", 20}});
    studio.store.set(QStringLiteral("qirn.pt.fill"),
                     {{"tolerance", 1000}, {"contiguous", false}, {"sampleAllLayers", true}, {"expand", -7}});
    const PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
    QCOMPARE(model.tool(), Tool::eraser);
    QCOMPARE(model.primary(), PaintColor(0.7, 0.02, 0.08));
    QCOMPARE(model.activeBrush().name, QStringLiteral("Hard Eraser"));
    QCOMPARE(model.prefs(), PaintPrefs()); // a record that lacks a key counts for nothing
    QCOMPARE(model.options().fill, (FillOptions{255, false, true, 0}));
    // What could not be read is still there.
    QCOMPARE(studio.store.text(QStringLiteral("qirn.pt.toolBrushes")), QStringLiteral("{\"brush\":[[["));
}

void tst_PaintModel::aBrushFileThatCannotBeReadIsMovedAside() {
    Studio studio;
    const QByteArray damaged("[{\"name\": 5}]");
    writeFile(AppFolders::brushesFile(), damaged);
    PaintModel model(PaintModel::LoadStores::yes, studio.desktop, studio.store);
    QVERIFY(model.userBrushes().empty());
    model.saveBrushAsNew(QStringLiteral("New"));
    QCOMPARE(BrushFile::decode(bytesOf(bytesAt(AppFolders::brushesFile())))->size(), std::size_t{1});
    model.saveBrushAsNew(QStringLiteral("Another"));
    QCOMPARE(BrushFile::decode(bytesOf(bytesAt(AppFolders::brushesFile())))->size(), std::size_t{2});
    const QStringList kept =
        QDir(AppFolders::base()).entryList({QStringLiteral("My Brushes (unreadable*).json")});
    QCOMPARE(kept.size(), 1);
    QCOMPARE(bytesAt(QDir(AppFolders::base()).filePath(kept[0])), damaged);
}

void tst_PaintModel::messagesPass() {
    Studio studio;
    studio.model.messageTime = 1;
    studio.model.flash(QStringLiteral("one"));
    studio.model.flash(QStringLiteral("two"));
    QCOMPARE(studio.model.hud(), QStringLiteral("two"));
    QTRY_VERIFY(!studio.model.hud().has_value());
}

void tst_PaintModel::theStarterGivesWayToTheFirstFile() {
    QTemporaryDir folder;
    Studio::FolderOverride base(folder.path());
    ScriptedDesktop desktop;
    Store store;
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    model.ensureDocument();
    QCOMPARE(model.current()->name, QStringLiteral("Untitled"));
    QCOMPARE(model.current()->doc().grid(), TileGrid(1920, 1080));
    QVERIFY(!model.current()->isDirty());
    PaintDocument picture(30, 20, 300, PaintColor::white());
    writeFile(folder.filePath(QStringLiteral("a.qirnpaint")), PaintFile::encode(picture));
    model.open(folder.filePath(QStringLiteral("a.qirnpaint")));
    QCOMPARE(model.sessions().size(), std::size_t{1});
    QCOMPARE(model.current()->name, QStringLiteral("a"));
    // A starter that was painted on stays.
    model.newCanvas();
    QCOMPARE(model.sessions().size(), std::size_t{2});
}

void tst_PaintModel::twoPicturesHaveTheirOwnViews() {
    Studio studio;
    DocSession& first = studio.session();
    studio.canvas.setZoom(3);
    studio.canvas.setRotation(20);
    studio.model.newDocument(100, 100, 72, std::nullopt, QStringLiteral("Second"));
    QCOMPARE(studio.canvas.session()->name, QStringLiteral("Second"));
    QVERIFY(studio.session().view != first.view);
    studio.penStroke({{50, 50}});
    QVERIFY(first.doc().activeLayer().isEmpty());
    studio.model.select(first);
    QCOMPARE(studio.canvas.session(), &first);
    QCOMPARE(first.view.zoom, 3.0);
    QCOMPARE(studio.model.status().view().rotation, 20.0);
}

void tst_PaintModel::aPictureIsSavedClosedAndOpenedAgain() {
    Studio studio;
    studio.penStroke({{30, 30}, {200, 150}, {90, 220}}, 0.7);
    studio.model.addLayer();
    studio.model.setLayer(2, QStringLiteral("Rename Layer"),
                          [](Layer& layer) { layer.name = QStringLiteral("Ébauche ✏️"); });
    const uint64_t print = studio.doc().fingerprint();
    studio.desktop.savePaths = {studio.path(QStringLiteral("Bild ä.qirnpaint"))};
    QVERIFY(studio.model.save(nullptr, PaintModel::SaveAs::no));
    QCOMPARE(studio.desktop.proposedNames.front(), QStringLiteral("Test.qirnpaint"));
    QVERIFY(!studio.session().isDirty());
    QCOMPARE(studio.session().name, QStringLiteral("Bild ä"));
    QCOMPARE(studio.model.hud(), QStringLiteral("Saved Bild ä.qirnpaint"));
    studio.model.closeCurrent();
    studio.model.open(studio.path(QStringLiteral("Bild ä.qirnpaint")));
    QCOMPARE(studio.doc().fingerprint(), print);
    QVERIFY(!studio.session().isDirty());
    // And on it goes, without another question.
    studio.penStroke({{10, 10}});
    QVERIFY(studio.model.save(nullptr, PaintModel::SaveAs::no));
    QVERIFY(studio.desktop.asked.empty());
    QCOMPARE(studio.desktop.recentFiles.size(), 3);
}

void tst_PaintModel::aFileIsNeverOpenedTwice() {
    Studio studio;
    PaintDocument picture(30, 20, 72, PaintColor::white());
    writeFile(studio.path(QStringLiteral("a.qirnpaint")), PaintFile::encode(picture));
    studio.desktop.openPaths = {
        {studio.path(QStringLiteral("a.qirnpaint")), studio.path(QStringLiteral("./a.qirnpaint"))}};
    studio.model.openPanel();
    QCOMPARE(studio.model.sessions().size(), std::size_t{2});
    DocSession* opened = studio.model.current();
    studio.model.select(*studio.model.sessions().front());
    studio.model.open(studio.path(QStringLiteral("a.qirnpaint")));
    QCOMPARE(studio.model.current(), opened);
}

void tst_PaintModel::aNameThatIsNoTextIsKept() {
    for (const char* bytes :
         {"caf\xe9.qirnpaint", "\x93\xfa\x96\x7b \xe6\x97\xa5.qirnpaint", "\xed\xb3\xa9.qirnpaint"}) {
        Studio studio;
        QDir(studio.path({})).mkdir(QStringLiteral("own"));
        const QByteArray folder = QFile::encodeName(studio.path(QStringLiteral("own/")));
        const std::filesystem::path own((folder + bytes).toStdString());
        std::ofstream(own) << PaintFile::encode(studio.doc()).toStdString();
        QMimeData offer;
        offer.setData(QStringLiteral("text/uri-list"), "file://" + (folder + bytes).toPercentEncoding("/"));
        QVERIFY(studio.model.drop(offer));
        QTRY_COMPARE(studio.model.sessions().size(), std::size_t{2});
        paintDot(studio);
        QVERIFY(studio.model.save(nullptr, PaintModel::SaveAs::no));
        std::stringstream saved;
        saved << std::ifstream(own).rdbuf();
        QCOMPARE(PaintFile::decode(bytesOf(QByteArray::fromStdString(saved.str())))->fingerprint(),
                 studio.doc().fingerprint());
        const std::filesystem::directory_iterator names(folder.toStdString());
        QCOMPARE(std::distance(begin(names), end(names)), std::ptrdiff_t{1}); // and no other
        std::filesystem::remove_all(folder.toStdString());                    // which the toolkit cannot
    }
}

void tst_PaintModel::aFailedSaveLosesNothing() {
    Studio studio;
    paintDot(studio);
    const uint64_t print = studio.doc().fingerprint();
    studio.desktop.savePaths = {studio.path(QStringLiteral("no such folder/a.qirnpaint"))};
    QVERIFY(!studio.model.save(nullptr, PaintModel::SaveAs::no));
    QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Couldn't save"));
    QVERIFY(studio.desktop.asked.back().text.endsWith(
        QStringLiteral("\n\nYour work is still open and autosaved.")));
    QVERIFY(studio.session().isDirty());
    QVERIFY(studio.session().fileURL.isEmpty());
    QCOMPARE(studio.doc().fingerprint(), print);
}

void tst_PaintModel::aDamagedFileIsToldInWords() {
    Studio studio;
    writeFile(studio.path(QStringLiteral("text.qirnpaint")), "not a paint file");
    PaintDocument picture(300, 300, 72, PaintColor::white());
    const QByteArray whole = PaintFile::encode(picture);
    writeFile(studio.path(QStringLiteral("half.qirnpaint")),
              whole.first(PaintFile::manifestOf(bytesOf(whole)).blobOffset + 10));
    for (const char* name : {"text.qirnpaint", "half.qirnpaint", "missing.qirnpaint"}) {
        studio.model.open(studio.path(QLatin1String(name)));
        QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Couldn't open ") + QLatin1String(name));
        QVERIFY(!studio.desktop.asked.back().text.isEmpty());
    }
    QCOMPARE(studio.model.sessions().size(), std::size_t{1});
}

void tst_PaintModel::closingAsksAboutUnsavedWork_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("closes");
    QTest::newRow("save") << 0 << true;
    QTest::newRow("cancel") << 1 << false;
    QTest::newRow("don't save") << 2 << true;
}

void tst_PaintModel::closingAsksAboutUnsavedWork() {
    QFETCH(int, answer);
    QFETCH(bool, closes);
    Studio studio;
    paintDot(studio);
    const QUuid id = studio.session().id;
    studio.desktop.answers = {answer};
    studio.desktop.savePaths = {studio.path(QStringLiteral("kept.qirnpaint"))};
    studio.model.closeCurrent();
    QCOMPARE(studio.desktop.asked.front().title, QStringLiteral("Save changes to \"Test\"?"));
    QCOMPARE(studio.desktop.asked.front().buttons,
             (QStringList{QStringLiteral("Save…"), QStringLiteral("Cancel"), QStringLiteral("Don't Save")}));
    QCOMPARE(studio.session().id != id, closes);
    QCOMPARE(QFile::exists(studio.path(QStringLiteral("kept.qirnpaint"))), answer == 0);
    QVERIFY(!QFile::exists(Recovery::fileURL(id)));
}

void tst_PaintModel::withoutACopyAPictureIsNotClosedUnasked_data() {
    QTest::addColumn<bool>("isFull");
    QTest::addColumn<QString>("reason");
    QTest::newRow("full disk") << true << "The file could not be written (File too large).";
    QTest::newRow("no Trash") << false << "The folder does not exist.";
}

void tst_PaintModel::withoutACopyAPictureIsNotClosedUnasked() {
    QFETCH(bool, isFull);
    QFETCH(QString, reason);
    Studio studio;
    paintDot(studio);
    const QUuid id = studio.session().id;
    QDir().mkpath(studio.path(QStringLiteral("data")));
    if (!isFull) writeFile(studio.path(QStringLiteral("data/Trash")), {});
    for (const bool closes : {false, true}) {
        std::optional<FullDisk> full;
        if (isFull) full.emplace();
        studio.desktop.answers = {2, closes};
        studio.model.closeCurrent();
        full.reset();
        QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Close \"Test\" without a copy?"));
        QCOMPARE(studio.desktop.asked.back().text, reason);
        QCOMPARE(studio.desktop.asked.back().buttons, QStringList({"Cancel", "Close"}));
        QCOMPARE(studio.session().id != id, closes);
        QCOMPARE(QFile::exists(Recovery::fileURL(id)), !closes && !isFull); // what there is stays until then
    }
}

void tst_PaintModel::quittingAsksForEachAndCanBeCancelled() {
    Studio studio;
    paintDot(studio);
    studio.model.newDocument(50, 50, 72, std::nullopt, QStringLiteral("Two"));
    paintDot(studio, 5);
    studio.desktop.answers = {0, 1};
    studio.desktop.savePaths = {studio.path(QStringLiteral("one.qirnpaint"))};
    QVERIFY(!studio.model.shouldQuit());
    QVERIFY(QFile::exists(studio.path(QStringLiteral("one.qirnpaint"))));
    QCOMPARE(studio.model.sessions().size(), std::size_t{1});
    QCOMPARE(studio.session().name, QStringLiteral("Two"));
    studio.desktop.answers = {2};
    QVERIFY(studio.model.shouldQuit());
    QVERIFY(QDir(AppFolders::autosave()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void tst_PaintModel::closingTheLastLeavesAFreshPicture() {
    Studio studio;
    studio.model.closeCurrent();
    QCOMPARE(studio.model.sessions().size(), std::size_t{1});
    QCOMPARE(studio.session().name, QStringLiteral("Untitled"));
    QCOMPARE(studio.canvas.session(), &studio.session());
}

void tst_PaintModel::closingAnotherTabLeavesTheTransformFloating() {
    Studio studio;
    const SessionRef other = studio.model.sessions().front();
    paintDot(studio);
    studio.model.newDocument(50, 50, 72, std::nullopt, QStringLiteral("Two"));
    paintDot(studio, 5);
    studio.model.beginTransform();
    studio.desktop.answers = {0};
    studio.desktop.savePaths = {studio.path(QStringLiteral("other.qirnpaint"))};
    QVERIFY(studio.model.close(*other) && studio.model.sessions().size() == 1);
    QVERIFY(studio.model.transform() && studio.doc().undoDepth() == 1);
}

void tst_PaintModel::safetyCopiesAreWrittenAndRemoved() {
    Studio studio;
    const auto copies = [] {
        return static_cast<std::size_t>(
            QDir(AppFolders::autosave()).entryList({QStringLiteral("*.qirnpaint")}).size());
    };
    const auto tick = [&] {
        studio.session().lastAutosave = {};
        studio.model.autosaveTick();
        BackgroundQueue::finish();
    };
    tick();
    QCOMPARE(copies(), std::size_t{0}); // nothing changed
    paintDot(studio);
    studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
    tick();
    QCOMPARE(copies(), std::size_t{0}); // not in the middle of a stroke
    studio.penEvent(QEvent::TabletRelease, {50, 50}, 0);
    PaintPrefs prefs;
    prefs.autosaveSeconds = 0;
    studio.model.setPrefs(prefs);
    tick();
    QCOMPARE(copies(), std::size_t{0}); // switched off
    studio.model.setPrefs(PaintPrefs());
    tick();
    QCOMPARE(copies(), std::size_t{1});
    QVERIFY(studio.model.lastAutosaveText()->startsWith(QStringLiteral("Autosaved ")));
    studio.desktop.savePaths = {studio.path(QStringLiteral("a.qirnpaint"))};
    studio.model.save(nullptr, PaintModel::SaveAs::no);
    QCOMPARE(copies(), std::size_t{0});
}

void tst_PaintModel::theRecentListKeepsWhatItHolds() {
    const QString once =
        recentListWith({}, QStringLiteral("/a b/ä&.qirnpaint"), QStringLiteral("2026-01-02T03:04:05Z"));
    QVERIFY(once.contains(QStringLiteral("href=\"file:///a%20b/%C3%A4&amp;.qirnpaint\"")));
    QCOMPARE(recentListWith(once, QStringLiteral("/a b/ä&.qirnpaint"), QStringLiteral("later")), once);
    const QString twice =
        recentListWith(once, QStringLiteral("/c.qirnpaint"), QStringLiteral("2026-01-02T03:04:05Z"));
    QVERIFY(twice.startsWith(once.chopped(8)));
    QCOMPARE(recentListWith(QStringLiteral("something else"), QStringLiteral("/c"), {}),
             QStringLiteral("something else"));
}

void tst_PaintModel::layerCommandsAreUndoSteps() {
    Studio studio;
    paintDot(studio);
    const struct {
        void (PaintModel::*command)();
        const char* name;
    } commands[] = {
        {&PaintModel::addLayer, "New Layer"},
        {&PaintModel::moveLayerDown, "Move Layer Down"},
        {&PaintModel::moveLayerUp, "Move Layer Up"},
        {&PaintModel::duplicateLayer, "Duplicate Layer"},
        {&PaintModel::deleteLayer, "Delete Layer"},
        {&PaintModel::toggleClipping, "Clipping"},
        {&PaintModel::toggleVisibility, "Visibility"},
        {&PaintModel::toggleAlphaLock, "Alpha Lock"},
        {&PaintModel::toggleLock, "Lock"},
        {&PaintModel::selectAll, "Select All"},
        {&PaintModel::deselect, "Deselect"},
        {&PaintModel::mergeDown, "Merge Down"},
        {&PaintModel::mergeVisible, "Merge Visible"},
        {&PaintModel::flatten, "Flatten Image"},
    };
    std::vector<uint64_t> prints{studio.doc().fingerprint()};
    for (const auto& [command, name] : commands) {
        (studio.model.*command)();
        QCOMPARE(studio.doc().undoName(), QLatin1String(name));
        prints.push_back(studio.doc().fingerprint());
    }
    while (prints.size() > 1) {
        QCOMPARE(studio.doc().fingerprint(), prints.back());
        prints.pop_back();
        studio.model.undo();
    }
    QCOMPARE(studio.doc().fingerprint(), prints.back());
    QVERIFY(studio.desktop.asked.empty()); // the layer that was deleted was empty
    studio.desktop.answers = {1};
    studio.model.deleteLayer();
    QCOMPARE(studio.desktop.asked.back().title, QStringLiteral("Delete the layer \"Layer 1\"?"));
    QCOMPARE(studio.doc().layerCount(), int64_t{2});
}

void tst_PaintModel::aPreviewedOpacityIsOneStepWhateverComesNext() {
    const std::pair<const char*, void (*)(Studio&)> nexts[] = {
        {"rest", [](Studio& s) { s.model.commitOpacity(); }},
        {"undo", [](Studio& s) { s.model.undo(); }},
        {"redo", [](Studio& s) { s.model.redo(); }},
        {"a stroke",
         [](Studio& s) {
             s.penStroke({{50, 50}, {90, 90}});
         }},
        {"a stroke dropped",
         [](Studio& s) {
             s.penEvent(QEvent::TabletPress, {50, 50}, 1);
             s.key(Qt::Key_Escape);
         }},
        {"a shape",
         [](Studio& s) {
             s.model.setTool(Tool::shape);
             s.mouseDrag({50, 50}, {90, 90});
         }},
        {"floating pixels", [](Studio& s) { s.model.beginTransform(); }},
        {"another layer", [](Studio& s) { s.model.setActiveLayer(0); }},
        {"another layer's opacity", [](Studio& s) { s.model.previewOpacity(0, 0.5); }},
        {"a command", [](Studio& s) { s.model.addLayer(); }},
        {"another picture", [](Studio& s) { s.model.newCanvas(); }},
    };
    for (const auto& [name, next] : nexts) {
        Studio studio;
        paintDot(studio);
        paintDot(studio, 40);
        studio.model.beginTransform(); // ends with the first preview
        studio.model.updateTransform([](TransformState& state) { state.center.rx() += 30; });
        studio.model.previewOpacity(1, 1);
        QCOMPARE(studio.doc().undoName(), QStringLiteral("Transform"));
        const uint64_t before = studio.doc().fingerprint();
        for (const double opacity : {0.7, 0.4}) studio.model.previewOpacity(1, opacity);
        QVERIFY(studio.model.canUndo() && !studio.model.canRedo());
        PaintDocument& doc = studio.doc();
        next(studio);
        while (doc.undoDepth() > 3) doc.undo();
        QVERIFY2(doc.fingerprint() == before && doc.redoName() == QStringLiteral("Layer Opacity"), name);
        studio.model.commitOpacity(); // as the slider has come to rest
        QVERIFY2(doc.canRedo(), name);
    }
}

void tst_PaintModel::refusalsLeaveNoStep() {
    Studio studio;
    studio.model.setActiveLayer(0);
    studio.doc().layer(1).isVisible = false;
    studio.model.mergeVisible();
    studio.model.mergeDown();
    QCOMPARE(studio.model.hud(), QStringLiteral("There is no layer below to merge into"));
    studio.model.moveLayerDown();
    studio.model.setActiveLayer(1);
    studio.model.moveLayerUp();
    studio.model.invertSelection();
    studio.model.deselect();
    QCOMPARE(studio.doc().undoDepth(), int64_t{0});
    studio.model.toggleLock();
    studio.model.clearLayer();
    QCOMPARE(studio.model.hud(), QStringLiteral("The layer \"Layer 1\" is locked"));
    QCOMPARE(studio.doc().undoName(), QStringLiteral("Lock"));
}

void tst_PaintModel::undoTellsWhatItDid() {
    Studio studio;
    studio.model.undo();
    QCOMPARE(studio.desktop.beeps, 1);
    QVERIFY(!studio.model.hud());
    paintDot(studio);
    studio.model.undo();
    QCOMPARE(studio.model.hud(), QStringLiteral("Undo Dot"));
    studio.model.redo();
    QCOMPARE(studio.model.hud(), QStringLiteral("Redo Dot"));
    studio.model.redo();
    QCOMPARE(studio.desktop.beeps, 2);
}

QIRN_TEST(tst_PaintModel)
#include "tst_PaintModel.moc"
