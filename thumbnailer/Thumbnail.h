#pragma once
#include "core/RGBABuffer.h"

#include <cstdint>

#include <QByteArray>

namespace qirn {

/// A PNG of the preview, made anew from its pixels and with at most `side` of them, at least 1, on the larger side; never
/// enlarged.
QByteArray thumbnail(const RGBABuffer& preview, int64_t side);

} // namespace qirn
