#pragma once
#include "app/files/PictureOnDisk.h"
#include "core/PaintColor.h"
#include "platform/DescribedError.h"
#include "program/arguments/Manual.h"

#include <QStringList>

namespace qirn {

/// What `--export` asks for: pictures to be written in another format, without a window.
struct ExportOrder {
    ExportFormat format = ExportFormat::png;
    double quality = kUsualQuality; ///< Of formats that ask for one, up to 1.
    PaintColor background = PaintColor::white();
    QStringList pictures; ///< In order, one or more.
    QString target;       ///< A file, where there is one picture; or a folder that is there.

    /// It was asked for in a way that makes no sense; `description` says what is wrong.
    class WrongUse : public DescribedError {
        using DescribedError::DescribedError;
        friend struct ExportOrder;
    };
    /// From all arguments, of which the first is the program's name. Throws WrongUse.
    static ExportOrder parsed(const QStringList& arguments);
    static std::vector<Manual::Section> manual();

    /// Where a picture goes: in a folder under its own name, with the format's extension.
    QString placeOf(const QString& picture) const;
};

} // namespace qirn
