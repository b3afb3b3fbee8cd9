#pragma once
#include "app/text/TextSpec.h"
#include "kit/rows/ControlRows.h"
#include "shell/sheets/Sheet.h"

#include <QPointF>

class QPlainTextEdit;

namespace qirn {

class PaintModel;
class Store;
class TextPreview;

/// The look of the words to be placed; what is chosen is kept for the next time at once.
struct TextLook {
    explicit TextLook(Store& stored); ///< Borrowed; as it was the last time.

    Store& store;
    TextSpec spec;
};

/// Asks for words and their look and places them as a layer of their own.
class TextSheet : public Sheet {
    Q_OBJECT
public:
    /// `topLeft` is a canvas point.
    TextSheet(PaintModel& model, QPointF topLeft, QWidget* parent);

    void placeText();

private:
    void refresh();

    QPointF topLeft_; // canvas
    TextLook look_;
    QPlainTextEdit* words_;
    ControlRows<TextLook>* rows_;
    TextPreview* preview_;
};

} // namespace qirn
