#pragma once
#include "platform/Progress.h"

#include <cstdint>

#include <QImage>

namespace qirn {

struct DocumentSnapshot;

/// The finished picture of a snapshot, reduced to `maxSide` pixels on its larger side as `ImageExport::scaled`
/// would. It is made tile by tile: a huge canvas costs what is painted on it, and a tile that many slots share is
/// composited once.
QImage previewOf(const DocumentSnapshot& snapshot, int64_t maxSide, const Progress& progress = {});

} // namespace qirn
