#pragma once
#include "app/model/PaintSheet.h"
#include "shell/sheets/Sheet.h"

#include <optional>

#include <QPointer>
#include <QScrollArea>

namespace qirn {

class PaintModel;

/// Shows the model's sheet over `covered`, which is disabled meanwhile: neither pointer nor Tab nor a screen reader
/// reaches it. Escape closes the sheet, Return presses its default button, and no key passes on to the window. A sheet
/// that is larger than the window scrolls.
class SheetHost : public QScrollArea {
    Q_OBJECT
public:
    /// Both are borrowed for its life; it lies in the same parent as `covered` and follows its place.
    SheetHost(PaintModel& model, QWidget* covered);

    Sheet* sheet() const { return sheet_; } ///< Null when none is up.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void refresh();
    void bringUp(const PaintSheet& which);
    void takeDown();

    PaintModel& model_;
    QWidget* covered_;
    std::optional<PaintSheet> shown_;
    QPointer<Sheet> sheet_;
    QPointer<QWidget> focusBefore_; // gets the focus back
};

} // namespace qirn
