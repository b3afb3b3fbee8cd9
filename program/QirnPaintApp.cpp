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
#include "core/PaintEngine.h"
#include "kit/QirnKit.h"
#include "kit/help/QirnAbout.h"
#include "platform/CheckedMath.h"
#include "platform/DescribedError.h"
#include "platform/files/FilePath.h"
#include "program/Benchmark.h"
#include "program/OneStudio.h"
#include "program/OpenRequests.h"
#include "program/PaintSample.h"
#include "program/ProgramIcon.h"
#include "program/SelfTest.h"
#include "program/UserLanguage.h"
#include "program/arguments/CommandLine.h"
#include "program/arguments/DisplayArguments.h"
#include "program/exporting/ExportPictures.h"
#include "shell/MainView.h"
#include "shell/help/AboutLines.h"
#include "shell/help/PaintHelp.h"

#include <cstdio>
#include <cstdlib>
#include <list>
#include <span>
#include <vector>

#include <QApplication>
#include <QFileInfo>
#include <QFileOpenEvent>
#include <QLocale>
#include <QSessionManager>
#include <unistd.h>

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

QByteArrayList bytesOf(const QStringList& paths) {
    QByteArrayList bytes;
    for (const QString& path : paths) bytes << bytesOfPath(path);
    return bytes;
}

int print(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    return 0;
}

/// What the desktop tells the application as a whole.
class PaintAppDelegate : public QObject {
public:
    PaintAppDelegate(QApplication& app, OpenRequests& requests) : requests_(requests) {
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

    void didFinishLaunching(const CommandLine& line) {
        PaintModel* const model = PaintModel::shared;
        if (!model) return;
        model->safety().startAutosave();
        soon(*model, [this, model, line] {
            model->files().open(line.files);
            if (line.sheet()) requests_.show(*line.sheet()); // which copies may have brought up already
        });
    }

    static bool shouldTerminate() {
        PaintModel* const model = PaintModel::shared;
        bool terminate = true;
        return !model || (guarded(*model, [&] { terminate = model->pictures().shouldQuit(); }) && terminate);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FileOpen) {
            const auto open = [&] { requests_.open({static_cast<QFileOpenEvent*>(event)->file()}); };
            if (PaintModel* const model = PaintModel::shared) guarded(*model, open);
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    OpenRequests& requests_;
};

/// In place of what the window system's library would say before it ends the process.
void sayThereIsNoDisplay(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg) return;
    std::fputs("Qirn Paint found no display to open its window on; --help lists what it does without one.\n",
               stderr);
    std::_Exit(1);
}

QByteArray activationToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

/// The studio, until it is quit. What has been taken from other starts and not opened is added to `left`.
int runWindow(int& argc, char** argv, const CommandLine& line, OneStudio& studio, std::list<HandOver>& left) {
    // Each pen point is painted; none is merged with the next.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QtMessageHandler usual = qInstallMessageHandler(sayThereIsNoDisplay);
    QApplication app(argc, argv);
    qInstallMessageHandler(usual);
    const UserLanguage language(QLocale(), QCoreApplication::applicationDirPath() +
                                               QStringLiteral("/../share/qirnpaint/translations"));
    studio.answer(); // not before: who hands over to a program that finds no display would wait for nothing
    app.setApplicationName(QStringLiteral("Qirn Paint"));
    app.setDesktopFileName(QStringLiteral("example.qirnpaint.QirnPaint"));
    app.setWindowIcon(programIcon()); // where the desktop has none of the name above
    Store store(AppFolders::storeFile(), AppFolders::olderStoreFile());
    QirnKit::useStore(store.forKit());
    QirnKit::install(QStringLiteral("Qirn Paint"), PaintHelp::topics());
    QirnAbout::setExtraLines(aboutLines());
    QtDesktop desktop;
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    PaintModel::shared = &model;
    MainView window(model);
    OpenRequests requests(model, window);
    PaintAppDelegate delegate(app, requests);
    model.pictures().ensureDocument();
    window.show();
    const SuddenEnd suddenEnd([&model] { model.safety().keepWork(); });
    delegate.didFinishLaunching(line);
    studio.deliverTo([&requests](const HandOver& request) {
        requests.comeForward(request.token);
        QStringList paths;
        for (const QByteArray& path : request.paths) paths << pathFromBytes(path);
        requests.open(paths);
        if (request.sheet) requests.show(*request.sheet);
    });
    const int result = app.exec();
    left = studio.close();
    for (const PaintSheet::Kind sheet : requests.waitingSheets()) left.push_front({{}, {}, {}, sheet});
    if (!requests.waiting().isEmpty()) left.push_front({{}, {}, bytesOf(requests.waiting())});
    return result;
}

/// Whoever handed it over while the studio was quit has ended, trusting that it is opened.
void startAgain(const QStringList& options, const std::list<HandOver>& left) {
    QByteArrayList words{"QirnPaint"};
    words << bytesOf(options);
    for (const HandOver& request : left)
        if (request.sheet) words << CommandLine::optionOf(*request.sheet);
    words << "--";
    for (const HandOver& request : left) words << request.paths;
    std::vector<char*> arguments;
    for (QByteArray& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const QString program = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    ::execv(bytesOfPath(program).constData(), arguments.data());
    ::execv("/proc/self/exe", arguments.data()); // where that file has been replaced or removed since
    std::fputs("Qirn Paint could not start again to open what it was handed while it quit:\n", stderr);
    for (const HandOver& request : left)
        for (const QByteArray& path : request.paths) std::fprintf(stderr, "%s\n", path.constData());
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
    case CommandLine::Mode::exportPictures:
        return exportPictures(line.words);
    case CommandLine::Mode::version:
        return print(CommandLine::version());
    default:
        return print(CommandLine::help().trimmed());
    }
}

int runStudio(int& argc, char** argv) {
    QStringList words;
    for (const char* word : std::span(argv, checkedSize(argc))) words << pathFromBytes(word);
    const DisplayArguments arguments(words);
    const CommandLine line = CommandLine::parsed(arguments.others);
    OneStudio studio(arguments.display, AppFolders::base());
    if (studio.handsOver({PaintEngine::version, activationToken(), bytesOf(line.files), line.sheet()}))
        return 0;
    std::list<HandOver> left;
    const int result = runWindow(argc, argv, line, studio, left);
    if (!left.empty()) startAgain(arguments.taken, left);
    return result;
}

} // namespace qirn
