#include "platform/files/FilePath.h"
#include "program/QirnPaintApp.h"
#include "program/arguments/CommandLine.h"

#include <QGuiApplication>

int main(int argc, char** argv) {
    using namespace qirn;
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << pathFromBytes(argv[i]);
    const CommandLine line = CommandLine::parsed(arguments);
    if (line.opensStudio()) return runStudio(argc, argv);
    // No window ever opens in the others, so none needs a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return runMode(line);
}
