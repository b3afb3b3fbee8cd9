#pragma once

namespace qirn {

/// Runs the built-in checks without a window and prints a line for each. The exit code: 0 if none failed, else 1.
/// Stored preferences are as they were afterwards, and no file is left behind.
int runSelfTest();

} // namespace qirn
