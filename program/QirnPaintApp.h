#pragma once
#include <optional>

#include <QStringList>

namespace qirn {

/// The command-line modes, which open no window.
namespace CommandModes {

enum class Mode { none, selfTest, benchmark, makeSample };
/// What the arguments (the program's name first) ask for; the self-test wins over the benchmark.
Mode modeOf(const QStringList& arguments);
/// Runs the mode with the same arguments and returns the process's exit code.
int run(Mode mode, const QStringList& arguments);

} // namespace CommandModes

/// The program as a studio: creates the one model and the main window and runs until the last window closes.
int runStudio(int& argc, char** argv);

} // namespace qirn
