#pragma once
#include <QListView>

namespace qirn {

class BrushPresetsModel;
class PaintModel;

/// The presets by category: of the current tool, or of any tool those that a search finds. A click or Return chooses one;
/// the arrow keys only go from row to row. As tall as its rows: what it stands in scrolls.
class BrushPresetList : public QListView {
    Q_OBJECT
public:
    BrushPresetList(PaintModel& model, QWidget* parent);

    void refresh(); ///< Reads the model again.
    void
    setSearch(const QString& words); ///< Each has to be in the name or the category; empty for no search.
    bool isEmpty() const;
    void chooseFirst();       ///< Of those that are shown.
    QRect chosenRect() const; ///< In its own coordinates; empty where the active brush is not shown.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    void currentMoved(QRect row); ///< By the keys.

protected:
    void updateGeometries() override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;

private:
    void choose(const QModelIndex& index);
    int heightOfRows() const;

    PaintModel& model_;
    BrushPresetsModel* rows_;
    QString search_;
    bool allAsked_ = false; // for their previews, which is done once those in sight are
};

} // namespace qirn
