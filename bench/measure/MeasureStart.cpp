#include "Measurements.h"

#include "../PlainPass.h"
#include "app/desktop/AppFolders.h"
#include "app/desktop/QtDesktop.h"
#include "app/desktop/Store.h"
#include "app/model/OpenPictures.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/MainView.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include <QApplication>
#include <QEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

namespace qirn::bench {

namespace {

constexpr QSize kWindow(1400, 900);

/// Ends the program once a widget has been painted and its pixels handed to the screen.
class EndAtFirstPaint : public QObject {
public:
    explicit EndAtFirstPaint(QWidget& widget) { widget.installEventFilter(this); }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        return false;
    }
};

double medianOfStarts(const QString& program, const QString& window) {
    const QTemporaryDir home; // nobody's pictures and settings
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    std::vector<double> times;
    for (int run = 0; run < 9; ++run) {
        QProcess started;
        started.setProcessEnvironment(environment);
        started.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const Stopwatch watch;
        started.start(program, {QStringLiteral("--show"), window});
        started.waitForFinished(-1);
        times.push_back(watch.seconds() * 1000);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int showFirstPaint(int argc, char** argv, const QString& window) {
    const QApplication app(argc, argv);
    if (window == QStringLiteral("widget")) {
        QWidget widget;
        widget.resize(kWindow);
        const EndAtFirstPaint ending(widget);
        widget.show();
        return QCoreApplication::exec();
    }
    Store store(AppFolders::storeFile(), AppFolders::olderStoreFile());
    QirnKit::useStore(store.forKit());
    QirnKit::install(QStringLiteral("Qirn Paint"));
    QtDesktop desktop;
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    MainView studio(model);
    model.pictures().ensureDocument();
    studio.resize(kWindow);
    const EndAtFirstPaint ending(studio);
    studio.show();
    return QCoreApplication::exec();
}

void measureStart(const QString& program) {
    const double widget = medianOfStarts(program, QStringLiteral("widget"));
    const double studio = medianOfStarts(program, QStringLiteral("studio"));
    std::printf("Start to first paint: %.0f ms; an empty widget %.0f ms (%.2f times)\n", studio, widget,
                studio / widget);
    std::fflush(stdout);
}

} // namespace qirn::bench
