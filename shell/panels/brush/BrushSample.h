#pragma once
#include "app/files/BrushPreviewCache.h"

#include <QWidget>

class QPainter;

namespace qirn {

class PaintModel;

/// The sample stroke of the active brush as it is set now.
class BrushSample : public QWidget {
    Q_OBJECT
public:
    BrushSample(PaintModel& model, QWidget* parent);

    static QSize
    pictureSize(); ///< Of a preview at the interface zoom of now, in the display's logical pixels.
    /// Pixels of a preview for each of its own logical ones, as `painter` shows it.
    static double scaleFor(const QPainter& painter);
    /// A preview in the middle of a dark plate, in which every brush can be seen; only the plate where it is null.
    static void paint(QPainter& painter, const QRectF& plate, const QImage& preview);

    QSize sizeHint() const override { return pictureSize(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PaintModel& model_;
    BrushPicture picture_;
};

} // namespace qirn
