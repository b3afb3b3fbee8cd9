#include "operations/FillOptions.h"

namespace qirn {

FillOptions FillOptions::fromJson(const Json& record) {
    FillOptions options;
    options.tolerance = jsonWhole(jsonMember(record, "tolerance"));
    options.contiguous = jsonFlag(jsonMember(record, "contiguous"));
    options.sampleAllLayers = jsonFlag(jsonMember(record, "sampleAllLayers"));
    options.expand = jsonWhole(jsonMember(record, "expand"));
    return options;
}

OrderedJson FillOptions::toJson() const {
    return {{"tolerance", tolerance},
            {"contiguous", contiguous},
            {"sampleAllLayers", sampleAllLayers},
            {"expand", expand}};
}

} // namespace qirn
