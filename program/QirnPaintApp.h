#pragma once

namespace qirn {

struct CommandLine;

/// Runs one of the modes that open no window and returns the process's exit code.
int runMode(const CommandLine& line);

/// The program as a studio: creates the one model and the main window, opens the files that the arguments name, and runs
/// until the last window closes. Where there is no display it says so in a sentence, and 1 is the exit code.
int runStudio(int& argc, char** argv);

} // namespace qirn
