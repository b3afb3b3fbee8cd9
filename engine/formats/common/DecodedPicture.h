#pragma once
#include "core/Layer.h"

namespace qirn {

/// A picture as it came out of a file.
struct DecodedPicture {
    LayerRef layer; ///< "Background", of the picture's size: upright, in the document's colors.
    double dpi = 72;
};

} // namespace qirn
