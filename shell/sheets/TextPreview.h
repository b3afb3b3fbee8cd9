#pragma once
#include "app/text/TextSpec.h"
#include "shell/sheets/ReducedPicture.h"

#include <QPoint>
#include <QWidget>

namespace qirn {

/// Words as they will lie on the picture, with what is round them, at the size of the screen's pixels or smaller until
/// they fit. What falls off the canvas does not show.
class TextPreview : public QWidget {
    Q_OBJECT
public:
    /// `corner` is the canvas pixel of the words' top left corner.
    TextPreview(const PaintDocument& doc, QPoint corner, QWidget* parent);

    void setText(const TextSpec& spec);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintPicture(QPainter& painter);

    ReducedPicture picture_;
    QPoint corner_;
    TextSpec spec_;
};

} // namespace qirn
