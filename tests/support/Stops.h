#pragma once
#include <functional>

namespace qirn::test {

/// Whether an action stops the process, as a broken invariant must. The program runs the same test function once more
/// up to this call, and then the action: in a process of its own with all its threads, as one made by fork is not.
bool stopsTheProcess(const std::function<void()>& action);

} // namespace qirn::test
