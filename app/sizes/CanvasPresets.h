#pragma once
#include <span>

namespace qirn {

/// A size that canvases often have. Names are English source texts.
struct DocPreset {
    const char* group;
    const char* name;
    int w; ///< Pixels.
    int h;
    double dpi;
    bool isPrint = false; ///< Its sides are thought of in inches.

    static std::span<const DocPreset> all(); ///< Those of one group stand together.
};

} // namespace qirn
