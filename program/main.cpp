#include "platform/files/FilePath.h"
#include "program/QirnPaintApp.h"

#include <QGuiApplication>

int main(int argc, char** argv) {
    using namespace qirn;
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << pathFromBytes(argv[i]);
    const CommandModes::Mode mode = CommandModes::modeOf(arguments);
    if (mode == CommandModes::Mode::none) return runStudio(argc, argv);
    // No window ever opens in these, so none needs a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return CommandModes::run(mode, arguments);
}
