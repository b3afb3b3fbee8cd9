#pragma once
#include "core/RGBABuffer.h"

#include <memory>

namespace qirn {

/// A picture as it came out of a file.
struct DecodedPicture {
    std::shared_ptr<RGBABuffer> pixels; ///< Upright, in the document's colours.
    double dpi = 72;
};

} // namespace qirn
