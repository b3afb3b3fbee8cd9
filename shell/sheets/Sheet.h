#pragma once
#include <functional>

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace qirn {

class PaintModel;

/// A sheet's content: the header that all have, its fields below, its buttons at the foot. `SheetHost` lays it over the
/// window and destroys it when the model's sheet changes.
class Sheet : public QWidget {
    Q_OBJECT
public:
    Sheet(PaintModel& model, const QString& title, const QString& subtitle, QWidget* parent);

    QPushButton* defaultButton() const { return default_; } ///< Return presses it; null until there is one.
    QWidget* firstField = nullptr;                          ///< Has the keyboard when the sheet comes up.

    QSize minimumSizeHint() const override; ///< What the words in it need, but no less than its least width.

protected:
    PaintModel& model() const { return model_; }
    QVBoxLayout& fields() const { return *fields_; }

    void setLeastWidth(double width); ///< On the grid at zoom 1.
    void setSubtitle(const QString& subtitle);
    QLabel* paragraph(const QString& text = {}); ///< Text of several lines.

    enum class Role { other, cancel, standard };
    /// At the foot from left to right; `other` stands at the left edge. `cancel` closes the sheet, `standard` is the
    /// default button.
    QPushButton* addButton(const QString& text, Role role);
    /// Closes the sheet and queues `work`, which runs when the sheet is destroyed and must not refer to it.
    void closeAnd(std::function<void()> work);

    void paintEvent(QPaintEvent* event) override;

private:
    PaintModel& model_;
    double leastWidth_ = 560;
    QLabel* subtitle_;
    QVBoxLayout* fields_;
    QHBoxLayout* foot_;
    QPushButton* default_ = nullptr;
    int others_ = 0;
};

} // namespace qirn
