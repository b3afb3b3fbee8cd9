#pragma once

namespace qirn {

class SelfTestReport;

/// The part of the self-test that looks into the manual.
void selfTestHelp(SelfTestReport& report);

} // namespace qirn
