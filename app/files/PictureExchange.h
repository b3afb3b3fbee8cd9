#pragma once
#include "core/RGBABuffer.h"

#include <memory>
#include <optional>

#include <QMimeData>
#include <QString>

namespace qirn {

/// What programs hand each other, on the clipboard or in a drag: which of it is a picture, and in which order the
/// forms are tried.
namespace PictureExchange {

/// A copied picture as others see it: PNG and TIFF, made when somebody asks for them. The buffer is not written any
/// more.
std::unique_ptr<QMimeData> copied(std::shared_ptr<const RGBABuffer> buffer, double dpi);

/// The first file of this machine; nothing where none is offered.
std::optional<QString> firstFile(const QMimeData& offer);

struct Taken {
    std::shared_ptr<const RGBABuffer> pixels; ///< Null when there is no picture that can be read.
    bool isLate = false;                      ///< None, since the other program did not hand it over in time.
};

/// The picture that the bytes of an offer hold: PNG, then TIFF, then any other form.
Taken picture(const QMimeData& offer);

/// As `picture`, with the first file read between TIFF and the other forms.
Taken pictureOrFile(const QMimeData& offer);

/// Whether a drag is worth taking: looks at what is offered without fetching it.
bool mayHoldPicture(const QMimeData& offer);

} // namespace PictureExchange

} // namespace qirn
