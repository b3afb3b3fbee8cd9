#pragma once
#include "core/BlendMode.h"
#include "core/IRect.h"
#include "formats/common/ByteReader.h"
#include "formats/psd/read/PSDLosses.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <QString>

namespace qirn::PSDFile {

/// What a file says of one layer, group or divider.
struct Rec {
    IRect rect;
    std::vector<std::pair<int16_t, int64_t>> chans; // identifier and bytes of data
    BlendMode mode = BlendMode::normal;
    double opacity = 1;
    bool isClipping = false;
    uint8_t flags = 0;
    QString name;
    bool isSection = false;
    Losses losses; ///< Of what the record says.

    bool isHidden() const { return flags & 2; }
    bool alphaLocked() const { return flags & 1; }
};

/// The next record. Throws PaintFileError, or BEReader::Short.
Rec readRecord(BEReader& in);

} // namespace qirn::PSDFile
