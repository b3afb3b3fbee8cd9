#include "StudioWindow.h"

#include "app/desktop/AppFolders.h"
#include "kit/QirnKit.h"

#include <ctime>

#include <QAction>
#include <QEventLoop>
#include <QScreen>
#include <QTimer>

namespace qirn::bench {

namespace {

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

} // namespace

StudioWindow::StudioWindow(int argc, char** argv)
    : argc_((AppFolders::setBaseOverride(home_.path()), argc)),
      app_(argc_, argv),
      model_((QirnKit::install(QStringLiteral("Qirn Paint")), PaintModel::LoadStores::no), desktop_, store_),
      window_(model_) {}

void StudioWindow::show(QSize size) {
    window_.resize(size);
    window_.show();
    pass(1);
}

void StudioWindow::act(const char* command) {
    window_.findChild<QAction*>(QLatin1String(command))->trigger();
}

void StudioWindow::waitUntilShown() {
    QApplication::processEvents();
    window_.screen()->grabWindow(window_.winId(), 0, 0, 1, 1);
}

void pass(double seconds) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

double threadSeconds() {
    return secondsOf(CLOCK_THREAD_CPUTIME_ID);
}

double processSeconds() {
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

} // namespace qirn::bench
