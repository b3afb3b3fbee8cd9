#pragma once
#include <QWidget>

class QLineEdit;
class QPushButton;

namespace qirn {

class PaintModel;

/// Keeps the active brush as a preset under a name, brings the saved one back, and takes presets out of and into files.
class BrushKeeping : public QWidget {
    Q_OBJECT
public:
    BrushKeeping(PaintModel& model, QWidget* parent);

    /// `isOwn`: the active brush comes from a preset of the user. `isChanged`: it differs from its preset.
    void show(bool isOwn, bool isChanged);

private:
    QPushButton* button(const char* name, const QString& text, const QString& tip,
                        const std::function<void()>& run);
    void saveAsNew();

    PaintModel& model_;
    QLineEdit* name_;
    QPushButton* update_;
    QPushButton* reset_;
};

} // namespace qirn
