#pragma once
#include "platform/Json.h"

#include <cstdint>

namespace qirn {

/// How the bucket finds what a click covers.
struct FillOptions {
    int64_t tolerance = 32;       ///< Largest difference from the clicked pixel in any channel, 0 to 255.
    bool contiguous = true;       ///< Only what is connected to the clicked pixel.
    bool sampleAllLayers = false; ///< Looks at the finished picture, not only at the active layer.
    int64_t expand = 1;           ///< Pixels by which the result grows; below 0 is 0, above 4 is 4.

    /// The numbers brought into their ranges. Throws JsonTypeError where a key is missing or of the wrong type.
    static FillOptions fromJson(const Json& record);
    OrderedJson toJson() const; ///< The keys are the names of the fields.

    bool operator==(const FillOptions&) const = default;
};

} // namespace qirn
