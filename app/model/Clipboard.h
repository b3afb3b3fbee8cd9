#pragma once
#include "core/IRect.h"
#include "core/RGBABuffer.h"
#include "operations/Floating.h"

#include <optional>

#include <QCoreApplication>
#include <QPoint>
#include <QString>

class QMimeData;

namespace qirn {

class PaintModel;

/// Copy and paste, drops on the canvas, and pictures imported as layers.
class Clipboard {
    Q_DECLARE_TR_FUNCTIONS(qirn::Clipboard)
public:
    explicit Clipboard(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    void copy(Merged merged); ///< Floating pixels are not copied.
    void cut();
    void paste();
    /// Adds the pixels as a new layer, whatever is selected; centerd where no place of the top left pixel is given.
    void pasteBuffer(const RGBABuffer& buffer, const QString& name, std::optional<QPoint> topLeft);
    void importImageAsLayer();
    void importImage(const QString& path);
    /// Takes a drop on the canvas: pictures become layers of the picture that is current, then documents open and the first
    /// of them is shown. False when it holds neither. Files are read after the call has returned.
    bool drop(const QMimeData& offer);
    /// Takes a drop where pictures are listed: each file opens as a picture.
    bool dropAsPictures(const QMimeData& offer);

private:
    void takeFiles(const QStringList& paths);
    bool copyPicture(Merged merged);
    std::optional<QPoint> placeOfCopy(const RGBABuffer& buffer) const;

    PaintModel& model_;
    std::optional<IRect> lastCopyOrigin_; // where the latest copy was taken, canvas pixels
};

} // namespace qirn
