#include "Measurements.h"

#include "platform/Parallel.h"
#include "platform/lanes/InstructionSets.h"

#include <cstdio>
#include <cstring>

#include <QString>

/// Without arguments everything but the hand; the path of a pen recording adds that. `--window RECORDING` paints it in
/// the real window instead.
int main(int argc, char** argv) {
    using namespace qirn;
    if (argc == 3 && std::strcmp(argv[1], "--show") == 0)
        return bench::showFirstPaint(argc, argv, QString::fromLocal8Bit(argv[2]));
    if (argc == 3 && std::strcmp(argv[1], "--window") == 0)
        return bench::measureWindow(argc, argv, QString::fromLocal8Bit(argv[2]));
    if (argc == 3 && std::strcmp(argv[1], "--copies") == 0)
        return bench::measureCopies(argc, argv, QString::fromLocal8Bit(argv[2]));
    if (argc == 2 && std::strcmp(argv[1], "--waits") == 0) return bench::measureWaits(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--choices") == 0) return bench::measureChoices(argc, argv);
    std::printf("%d threads, %s\n", concurrency(), instructionSets().back().c_str());
    bench::measureStart(QString::fromLocal8Bit(argv[0]));
    bench::measureCanvas();
    if (argc == 2) bench::measureHand(QString::fromLocal8Bit(argv[1]));
    return 0;
}
