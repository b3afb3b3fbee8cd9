#pragma once
#include <functional>
#include <string>

namespace qirn::bench {

/// One line of the comparison: how long our work takes against a peer's doing the same, in one run.
struct Comparison {
    std::string work;
    std::string peer;
    double reach = 0; ///< The ratio that we want to stay under.
    std::function<void()> ours;
    std::function<void()> theirs;
    /// Brings both back to where they began, outside the measured time; may be empty.
    std::function<void()> reset = {};
    int runs = 7;
};

/// Runs the two in turn, so that a busy machine slows both, and prints the medians and their ratio.
void compare(const Comparison& comparison);

void printHeading();

// One for each kind of peer; each prints its lines.
void compareStrokes();     // libmypaint
void compareCompositing(); // pixman, QPainter, reading and writing the memory
void compareFills();       // OpenCV
void compareFiles();       // the LZFSE reference on one thread, ImageMagick, plain copies

} // namespace qirn::bench
