#include "PeerTable.h"

#include "../PlainPass.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/Parallel.h"
#include "platform/lanes/InstructionSets.h"

namespace qirn::bench {

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double timed(const std::function<void()>& work) {
    const Stopwatch watch;
    work();
    return watch.seconds();
}

} // namespace

void printHeading() {
    std::printf("%d threads, %s\n\n%-50s %-26s %10s %10s %7s %7s\n", concurrency(),
                instructionSets().back().c_str(), "work", "against", "ours ms", "theirs ms", "ratio",
                "reach");
}

void compare(const Comparison& comparison) {
    std::vector<double> ours, theirs;
    for (int run = 0; run <= comparison.runs; ++run) {
        const double a = timed(comparison.ours);
        const double b = timed(comparison.theirs);
        if (comparison.reset) comparison.reset();
        if (run == 0) continue; // a first one to warm up
        ours.push_back(a);
        theirs.push_back(b);
    }
    const double ratio = median(ours) / median(theirs);
    std::printf("%-50s %-26s %10.3f %10.3f %7.3f %7.2f%s\n", comparison.work.c_str(), comparison.peer.c_str(),
                median(ours) * 1000, median(theirs) * 1000, ratio, comparison.reach,
                ratio <= comparison.reach ? "" : "  *");
    std::fflush(stdout);
}

} // namespace qirn::bench

namespace {

struct Kind {
    const char* name;
    void (*compare)();
};
constexpr Kind kKinds[] = {
    {"strokes", qirn::bench::compareStrokes},
    {"compositing", qirn::bench::compareCompositing},
    {"fills", qirn::bench::compareFills},
    {"files", qirn::bench::compareFiles},
};

} // namespace

/// Compares the kinds of work that the arguments name; all without any.
int main(int argc, char** argv) {
    qirn::bench::printHeading();
    for (const Kind& kind : kKinds) {
        const auto named = [&kind](const char* argument) { return std::strcmp(argument, kind.name) == 0; };
        if (argc < 2 || std::any_of(argv + 1, argv + argc, named)) kind.compare();
    }
    return 0;
}
