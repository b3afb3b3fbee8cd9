#pragma once
#include <vector>

#include <QColor>
#include <QListView>
#include <QString>
#include <QUuid>

namespace qirn {

class PaletteRows;
class PaintModel;

/// All palettes, the built-in ones first, each with its first colors. Letters and Delete stay the canvas's.
class PaletteList : public QListView {
    Q_OBJECT
public:
    PaletteList(PaintModel& model, QWidget* parent);

    void refresh();

    QSize sizeHint() const override { return minimumSize(); } // its place grows where there is room

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    PaintModel& model_;
    PaletteRows* rows_;
    bool isReading_ = false; // what the list makes current meanwhile is not the user's choice
};

} // namespace qirn
