#include "program/QirnPaintApp.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/QtDesktop.h"
#include "app/desktop/Store.h"
#include "app/desktop/SuddenEnd.h"
#include "app/files/DocSession.h"
#include "app/files/LongTask.h"
#include "app/model/Guarded.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "app/model/PictureFiles.h"
#include "app/model/Safety.h"
#include "kit/QirnKit.h"
#include "kit/help/QirnAbout.h"
#include "platform/CheckedMath.h"
#include "platform/DescribedError.h"
#include "platform/files/FilePath.h"
#include "program/Benchmark.h"
#include "program/CommandLine.h"
#include "program/PaintSample.h"
#include "program/SelfTest.h"
#include "shell/MainView.h"
#include "shell/help/AboutLines.h"
#include "shell/help/PaintHelp.h"

#include <cstdio>
#include <cstdlib>
#include <span>

#include <QApplication>
#include <QFileOpenEvent>
#include <QSessionManager>

namespace qirn {

namespace {

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

int print(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    return 0;
}

/// What the desktop tells the application as a whole.
class PaintAppDelegate : public QObject {
public:
    explicit PaintAppDelegate(QApplication& app) : QObject(&app) {
        app.setQuitOnLastWindowClosed(true);
        app.installEventFilter(this);
        // A session that ends asks as quitting does.
        connect(&app, &QGuiApplication::commitDataRequest, this, [](QSessionManager& session) {
            PaintModel* const model = PaintModel::shared;
            if (!session.allowsInteraction() || (model && model->longTask().isRunning())) {
                if (model) model->safety().keepWork();
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
        PaintModel* const model = PaintModel::shared;
        if (model) soon(*model, [model, paths] { model->files().open(paths); });
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

/// In place of what the window system's library would say before it ends the process.
void sayThereIsNoDisplay(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg) return;
    std::fputs("Qirn Paint found no display to open its window on; --help lists what it does without one.\n",
               stderr);
    std::_Exit(1);
}

/// What is left of the arguments when the window system has taken its own.
QStringList filesIn(int argc, char** argv) {
    QStringList arguments;
    for (const char* argument : std::span(argv, checkedSize(argc))) arguments << pathFromBytes(argument);
    return CommandLine::parsed(arguments).files;
}

} // namespace

int runMode(const CommandLine& line) {
    switch (line.mode) {
    case CommandLine::Mode::selfTest:
        return runSelfTest();
    case CommandLine::Mode::benchmark:
        runBenchmark();
        return 0;
    case CommandLine::Mode::makeSample:
        return makeSample(line.samplePath);
    case CommandLine::Mode::version:
        return print(CommandLine::version());
    default:
        return print(CommandLine::help().trimmed());
    }
}

int runStudio(int& argc, char** argv) {
    // Each pen point is painted; none is merged with the next.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QtMessageHandler usual = qInstallMessageHandler(sayThereIsNoDisplay);
    QApplication app(argc, argv);
    qInstallMessageHandler(usual);
    app.setApplicationName(QStringLiteral("Qirn Paint"));
    app.setDesktopFileName(QStringLiteral("example.qirnpaint.QirnPaint"));
    auto* delegate = new PaintAppDelegate(app);
    Store store(AppFolders::storeFile(), AppFolders::olderStoreFile());
    QirnKit::useStore(store.forKit());
    QirnKit::install(QStringLiteral("Qirn Paint"), PaintHelp::topics());
    QirnAbout::setExtraLines(aboutLines());
    QtDesktop desktop;
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
