#pragma once

namespace qirn {

/// Times pen points, compositing, saving, opening and undo on a 4K picture and prints a line for each.
void runBenchmark();

} // namespace qirn
