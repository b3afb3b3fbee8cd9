#include "operations/flood/FillOptions.h"

#include <algorithm>

namespace qirn {

FillOptions FillOptions::fromJson(const Json& record) {
    FillOptions options;
    options.tolerance = std::clamp<int64_t>(jsonWhole(jsonMember(record, "tolerance")), 0, 255);
    options.contiguous = jsonFlag(jsonMember(record, "contiguous"));
    options.sampleAllLayers = jsonFlag(jsonMember(record, "sampleAllLayers"));
    options.expand = std::clamp<int64_t>(jsonWhole(jsonMember(record, "expand")), 0, 4);
    return options;
}

OrderedJson FillOptions::toJson() const {
    return {{"tolerance", tolerance},
            {"contiguous", contiguous},
            {"sampleAllLayers", sampleAllLayers},
            {"expand", expand}};
}

} // namespace qirn
