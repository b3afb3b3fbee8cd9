#pragma once

namespace qirn {

/// From now on a screen reader sees a `SwatchGrid` as a list of its colors, each with its name and number, which it can
/// pick. Does nothing the second time.
void installSwatchAccess();

} // namespace qirn
