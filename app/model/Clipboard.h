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

/// Pictures that go out and come in beside whole documents: the clipboard, drags and imported layers.
class Clipboard {
    Q_DECLARE_TR_FUNCTIONS(qirn::Clipboard)
public:
    explicit Clipboard(PaintModel& model) : model_(model) {} ///< Borrowed for its life.

    void copy(Merged merged); ///< Lifted pixels stay where they are and are not copied.
    void cut();
    void paste();
    /// As a new layer, never cut by the selection; centred where no place of the top left pixel is given.
    void pasteBuffer(const RGBABuffer& buffer, const QString& name, std::optional<QPoint> topLeft);
    void importImageAsLayer();
    void importImage(const QString& path);
    bool drop(const QMimeData& offer); ///< False when nothing in it is of use; files are read after the call.

private:
    bool copyPicture(Merged merged);
    std::optional<QPoint> placeOfCopy(const RGBABuffer& buffer) const;

    PaintModel& model_;
    std::optional<IRect> lastCopyOrigin_; // where the latest copy was taken, canvas pixels
};

} // namespace qirn
