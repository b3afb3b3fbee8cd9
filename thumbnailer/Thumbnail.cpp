#include "thumbnailer/Thumbnail.h"

#include "formats/common/AreaReducer.h"
#include "formats/pictures/SmallPng.h"

namespace qirn {

QByteArray thumbnail(const RGBABuffer& preview, int64_t side) {
    const QSize size = reducedSize(preview.width(), preview.height(), side);
    AreaReducer reducer(preview.width(), preview.height(), size.width(), size.height());
    reducer.add(
        reducer.reduce({0, 0, preview.width(), preview.height()}, preview.data(), preview.width() * 4));
    return smallPng(*reducer.result());
}

} // namespace qirn
