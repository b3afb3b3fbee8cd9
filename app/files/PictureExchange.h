#pragma once
#include "core/RGBABuffer.h"

#include <memory>
#include <optional>

#include <QMimeData>
#include <QString>
#include <QStringList>

namespace qirn {

/// Pictures on the clipboard or in a drag: which forms are offered, and in which order those of others are tried.
namespace PictureExchange {

/// A copied picture, offered as PNG and TIFF, which are encoded on demand. Nobody may write to the buffer from now on.
std::unique_ptr<QMimeData> copied(std::shared_ptr<const RGBABuffer> buffer, double dpi);

/// The local files of the offer, in its order.
QStringList files(const QMimeData& offer);

struct Taken {
    std::shared_ptr<const RGBABuffer> pixels; ///< Null when there is no picture that can be read.
    bool isLate = false; ///< There is none because the other program did not deliver in time.
};

/// The picture in the data of an offer: PNG, then TIFF, then any other form.
Taken picture(const QMimeData& offer);

/// As `picture`, with the first file read between TIFF and the other forms.
Taken pictureOrFile(const QMimeData& offer);

} // namespace PictureExchange

} // namespace qirn
