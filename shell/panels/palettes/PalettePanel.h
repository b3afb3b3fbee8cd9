#pragma once
#include <QWidget>

class QHBoxLayout;
class QLineEdit;
class QPushButton;

namespace qirn {

class ChromeNote;
class PaintModel;
class PaletteList;
class SwatchGrid;

/// The library of palettes and the colors of the current one, which are picked, removed and reordered here.
class PalettePanel : public QWidget {
    Q_OBJECT
public:
    PalettePanel(PaintModel& model, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh(); ///< Reads nothing while it is hidden.
    QPushButton* button(const char* name, const QString& title, void (PalettePanel::*run)());
    QWidget* swatches();
    QHBoxLayout* row(std::initializer_list<QWidget*> parts);
    QString takeName(); ///< The typed name; the field is empty afterwards.

    void addColor();
    void makePalette();
    void makeFromRecent();
    void rename();
    void remove();
    void importFile();
    void exportGpl();
    void exportAco();

    PaintModel& model_;
    PaletteList* library_;
    ChromeNote* current_;
    SwatchGrid* grid_;
    QLineEdit* name_;
    QPushButton* rename_;
    QPushButton* delete_;
};

} // namespace qirn
