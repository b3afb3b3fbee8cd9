#pragma once
#include <string>
#include <vector>

namespace qirn {

/// The instruction sets for which the hot loops were compiled and that this machine has, from the plain one up. The
/// bytes are the same on all of them; the last is what the loops use.
std::vector<std::string> instructionSets();

/// Makes the loops use one of these from here on; an empty name is the best one. For tests and measurements, while
/// no loop runs.
void useInstructionSet(const std::string& name);

} // namespace qirn
