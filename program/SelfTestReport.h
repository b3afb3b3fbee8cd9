#pragma once
#include <QString>

namespace qirn {

/// Counts and prints the checks of the self-test.
class SelfTestReport {
public:
    void heading();
    void check(const QString& name, bool passed);
    void endSection(); ///< What was printed so far is on its way out.
    void result();
    int failures() const { return failed_; }

private:
    int passed_ = 0;
    int failed_ = 0;
};

} // namespace qirn
