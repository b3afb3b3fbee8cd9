#include "program/SelfTestReport.h"

#include "core/PaintEngine.h"

#include <cstdio>

namespace qirn {

void SelfTestReport::heading() {
    std::printf("Qirn Paint self-test — engine %s\n", PaintEngine::version);
}

void SelfTestReport::check(const QString& name, bool passed) {
    ++(passed ? passed_ : failed_);
    std::printf("%s  %s\n", passed ? "PASS" : "FAIL", qPrintable(name));
}

void SelfTestReport::endSection() {
    std::fflush(stdout);
}

void SelfTestReport::result() {
    if (failed_ == 0)
        std::printf("RESULT: ALL %d CHECKS PASSED\n", passed_);
    else
        std::printf("RESULT: %d CHECK(S) FAILED, %d passed\n", failed_, passed_);
    std::fflush(stdout);
}

} // namespace qirn
