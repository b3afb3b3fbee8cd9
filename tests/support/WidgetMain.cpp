#include <memory>

#include <QApplication>

/// For programs whose tests have widgets, in place of the plain application object of TestMain.
std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv);
std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv) {
    // As the program itself: no pen event is merged with the next.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false);
    return std::make_unique<QApplication>(argc, argv);
}
