#include "app/canvas/CanvasView.h"
#include "app/desktop/AppFolders.h"
#include "app/desktop/Store.h"
#include "app/desktop/SuddenEnd.h"
#include "app/edits/CanvasEdits.h"
#include "app/files/DocSession.h"
#include "app/files/Recovery.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"
#include "app/model/Safety.h"
#include "app/tools/ToolTable.h"
#include "support/Pictures.h"
#include "support/ScriptedDesktop.h"
#include "support/TestMain.h"

#include <csignal>
#include <cstdio>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr const char* kChild = "QIRN_TEST_CHILD"; // folder, way to end, gesture
const PaintColor kFirst(1, 0, 0), kLast(0, 0, 1);

/// The program that is made to end: its picture has a copy of one step, another step since, and a gesture under way.
[[noreturn]] void paintUntilTheEnd(const QString& folder, const QString& way, const QString& gesture) {
    AppFolders::setBaseOverride(folder);
    ScriptedDesktop desktop;
    Store store(AppFolders::storeFile());
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    CanvasView canvas(model, kToolTable);
    PaintPrefs prefs;
    prefs.autosaveSeconds = 0;
    model.setPrefs(prefs);
    model.pictures().newDocument(64, 64, 72, std::nullopt, "Kept");
    canvas.resize(300, 300);
    canvas.show();
    CanvasEdits::fillSelection(model, kFirst);
    Recovery::write(*model.current(), Recovery::Synchronously::yes);
    CanvasEdits::fillSelection(model, kLast);
    if (gesture == "transform") model.transform().beginTransform();
    if (gesture == "stroke") QTest::mousePress(&canvas, Qt::LeftButton, {}, canvas.rect().center());
    for (const int number : {SIGTERM, SIGHUP, SIGINT})
        std::signal(number, SIG_DFL); // whatever we were started with
    const SuddenEnd end([&] { model.safety().keepWork(); });
    // As Qt does when it finds the display gone.
    if (way == "X11") QTimer::singleShot(0, [] { std::exit(1); });
    if (way == "Wayland") {
        const auto leave = [] {
            qWarning("The Wayland connection broke. Did the Wayland compositor die?");
            _exit(1);
        };
        QTimer::singleShot(0, leave);
        QThread::create(leave)->start();
    }
    std::puts("painting");
    std::fflush(stdout);
    QCoreApplication::exec();
    _exit(2);
}

} // namespace

class tst_SuddenEnd : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        const QStringList child = qEnvironmentVariable(kChild).split(u'|');
        if (child.size() == 3) paintUntilTheEnd(child[0], child[1], child[2]);
    }

    void workIsKept_data() {
        QTest::addColumn<int>("number"); // of the signal; 0: the display goes
        QTest::addColumn<QString>("gesture");
        QTest::newRow("SIGTERM") << SIGTERM << "stroke";
        QTest::newRow("SIGHUP") << SIGHUP << "transform";
        QTest::newRow("SIGINT") << SIGINT << "none";
        QTest::newRow("X11") << 0 << "transform";
        QTest::newRow("Wayland") << 0 << "stroke";
    }
    void workIsKept() {
        QFETCH(int, number);
        QFETCH(QString, gesture);
        const QTemporaryDir folder;
        AppFolders::setBaseOverride(folder.path());
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(kChild, QStringList{folder.path(), QTest::currentDataTag(), gesture}.join(u'|'));
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationFilePath(), {"tst_SuddenEnd"});
        QByteArray said;
        while (!said.contains("painting")) {
            QVERIFY(program.waitForReadyRead(30'000));
            said += program.readAllStandardOutput();
        }
        if (number != 0) {
            QCOMPARE(QDir(AppFolders::autosave()).entryList({"*.qirnpaint"}).size(), 1);
            QVERIFY(Recovery::pending({}).empty()); // its picture is open
            QCOMPARE(::kill(static_cast<pid_t>(program.processId()), number), 0);
        }
        QVERIFY(program.waitForFinished(30'000));
        if (number != 0) QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QCOMPARE(program.exitCode(), number == 0 ? 1 : number);

        const auto items = Recovery::pending({});
        QCOMPARE(items.size(), std::size_t{1});
        const SessionRef restored = Recovery::restore(items[0]);
        PaintDocument expected(64, 64, 72, std::nullopt);
        paintRect(expected, expected.activeLayer(), {0, 0, 64, 64}, {0, 0, 255, 255});
        QCOMPARE(restored->doc().fingerprint(), expected.fingerprint());
        QVERIFY(Store(AppFolders::storeFile()).json("qirn.pt.colors"));
        AppFolders::setBaseOverride({});
    }
};

QIRN_TEST(tst_SuddenEnd)
#include "tst_SuddenEnd.moc"
