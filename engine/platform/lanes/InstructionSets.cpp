#include "platform/lanes/InstructionSets.h"

#include "platform/Require.h"

#include <algorithm>

#include <hwy/highway.h>

namespace qirn {

namespace {

std::vector<int64_t> findTargets() {
    std::vector<int64_t> bits;
    for (int64_t rest = hwy::SupportedTargets() & HWY_TARGETS; rest != 0; rest &= rest - 1)
        bits.push_back(rest & -rest);
    // Plain loops run everywhere.
    if (std::find(bits.begin(), bits.end(), HWY_STATIC_TARGET) == bits.end())
        bits.push_back(HWY_STATIC_TARGET);
    return bits;
}

/// A bit each, best first. They are found before the first call of useInstructionSet, after which Highway reports
/// only the chosen one.
const std::vector<int64_t>& targets() {
    static const std::vector<int64_t> found = findTargets();
    return found;
}

} // namespace

std::vector<std::string> instructionSets() {
    std::vector<std::string> names;
    for (int64_t target : targets()) names.insert(names.begin(), hwy::TargetName(target));
    return names;
}

void useInstructionSet(const std::string& name) {
    const std::vector<int64_t>& known = targets();
    if (name.empty()) return hwy::SetSupportedTargetsForTest(0);
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](int64_t target) { return name == hwy::TargetName(target); });
    require(found != known.end());
    hwy::SetSupportedTargetsForTest(*found);
}

} // namespace qirn
