#include "platform/files/FilePath.h"
#include "program/CommandLine.h"
#include "program/QirnPaintApp.h"

#include <QGuiApplication>

int main(int argc, char** argv) {
    using namespace qirn;
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << pathFromBytes(argv[i]);
    const CommandLine line = CommandLine::parsed(arguments);
    if (line.mode == CommandLine::Mode::none) return runStudio(argc, argv);
    // No window ever opens in these, so none needs a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return runMode(line);
}
