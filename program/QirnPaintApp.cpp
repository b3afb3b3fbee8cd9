#include "program/QirnPaintApp.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/QtDesktop.h"
#include "app/desktop/Store.h"
#include "app/desktop/SuddenEnd.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/Safety.h"
#include "kit/QirnKit.h"
#include "platform/CheckedMath.h"
#include "platform/DescribedError.h"
#include "platform/files/FilePath.h"
#include "program/Benchmark.h"
#include "program/PaintSample.h"
#include "program/SelfTest.h"
#include "shell/MainView.h"

#include <cstdio>
#include <filesystem>
#include <span>
#include <system_error>

#include <QApplication>
#include <QFileOpenEvent>
#include <QSessionManager>

namespace qirn {

namespace {

/// What follows the first "--make-sample"; empty when nothing does.
QString samplePath(const QStringList& arguments) {
    const qsizetype at = arguments.indexOf(QStringLiteral("--make-sample"), 1);
    return at < 0 ? QString() : arguments.value(at + 1);
}

int makeSample(const QString& path) {
    int argc = 1;
    char name[] = "QirnPaint";
    char* argv[] = {name, nullptr};
    const QGuiApplication app(argc, argv); // for the text
    try {
        PaintSample::write(path);
    } catch (const DescribedError& error) {
        std::printf("Sample failed: %s\n", qPrintable(error.description()));
        return 1;
    }
    std::printf("Sample written: %s\n", qPrintable(path));
    return 0;
}

} // namespace

CommandModes::Mode CommandModes::modeOf(const QStringList& arguments) {
    const QStringList given = arguments.mid(1);
    if (given.contains(QStringLiteral("--selftest"))) return Mode::selfTest;
    if (given.contains(QStringLiteral("--benchmark"))) return Mode::benchmark;
    return samplePath(arguments).isEmpty() ? Mode::none : Mode::makeSample;
}

int CommandModes::run(Mode mode, const QStringList& arguments) {
    if (mode == Mode::selfTest) return runSelfTest();
    if (mode == Mode::makeSample) return makeSample(samplePath(arguments));
    runBenchmark();
    return 0;
}

namespace {

/// What the desktop tells the application as a whole.
class PaintAppDelegate : public QObject {
public:
    explicit PaintAppDelegate(QApplication& app) : QObject(&app) {
        app.setQuitOnLastWindowClosed(true);
        app.installEventFilter(this);
        // A session that ends asks as quitting does.
        connect(&app, &QGuiApplication::commitDataRequest, this, [](QSessionManager& session) {
            if (!session.allowsInteraction()) {
                if (PaintModel::shared) PaintModel::shared->safety().keepWork();
            } else if (!shouldTerminate()) {
                session.cancel();
            }
        });
    }

    void didFinishLaunching(const QStringList& paths) {
        if (PaintModel::shared) PaintModel::shared->safety().startAutosave();
        open(paths);
    }

    /// Opens files once the events before them are done, so that a launch by double-click finds the model.
    void open(const QStringList& paths) {
        QMetaObject::invokeMethod(
            this,
            [paths] {
                for (const QString& path : paths) {
                    if (PaintModel* const model = PaintModel::shared)
                        guarded(*model, [&] { model->pictures().open(path); });
                }
            },
            Qt::QueuedConnection);
    }

    static bool shouldTerminate() {
        PaintModel* const model = PaintModel::shared;
        bool terminate = true;
        return !model || (guarded(*model, [&] { terminate = model->pictures().shouldQuit(); }) && terminate);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FileOpen) {
            open({static_cast<QFileOpenEvent*>(event)->file()});
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

/// Arguments that name existing files; every other one is ignored.
QStringList filesIn(int argc, char** argv) {
    QStringList files;
    for (const char* argument : std::span(argv, checkedSize(argc)).subspan(1)) {
        std::error_code none;
        const bool named = !QByteArray(argument).startsWith("--");
        if (named && std::filesystem::is_regular_file(argument, none))
            files << absolutePath(pathFromBytes(argument));
    }
    return files;
}

} // namespace

int runStudio(int& argc, char** argv) {
    // Each pen point is painted; none is merged with the next.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("Qirn Paint"));
    app.setApplicationDisplayName(QStringLiteral("Qirn Paint"));
    app.setDesktopFileName(QStringLiteral("example.qirnpaint.QirnPaint"));
    auto* delegate = new PaintAppDelegate(app);
    QirnKit::install(QStringLiteral("Qirn Paint"));
    QtDesktop desktop;
    Store store(AppFolders::storeFile(), AppFolders::olderStoreFile());
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    PaintModel::shared = &model;
    MainView window(model);
    model.pictures().ensureDocument();
    window.show();
    const SuddenEnd suddenEnd([&model] { model.safety().keepWork(); });
    delegate->didFinishLaunching(filesIn(argc, argv));
    return app.exec();
}

} // namespace qirn
