#include "shell/options/BrushPresetMenu.h"

#include "app/model/Brushes.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"

#include <QMenu>
#include <QStyleOption>
#include <QStylePainter>

namespace qirn {

BrushPresetMenu::BrushPresetMenu(PaintModel& model, QWidget* parent) : QPushButton(parent), model_(model) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setObjectName(QStringLiteral("Brush preset"));
    setToolTip(tr("Brush preset"));
    setMenu(new QMenu(this));
    connect(menu(), &QMenu::aboutToShow, this, &BrushPresetMenu::fill);
    connect(&model, &PaintModel::changed, this, &BrushPresetMenu::refresh);
    refresh();
}

void BrushPresetMenu::refresh() {
    const QString name = model_.brushes().activeBrush().name;
    setText(name);
    setAccessibleName(tr("Brush preset") + u' ' + name);
}

QSize BrushPresetMenu::sizeHint() const {
    // The same for every name, so that the options beside it stay where they are.
    return {QirnKitHost::metrics().controlWidth, QirnKitHost::metrics().controlHeight};
}

void BrushPresetMenu::fill() {
    menu()->clear();
    QStringList categories;
    const std::vector<BrushSettings> brushes = model_.brushes().brushesFor(model_.brushes().brushTool());
    for (const BrushSettings& brush : brushes)
        if (!categories.contains(brush.category)) categories << brush.category;
    for (const QString& category : categories) {
        // One category needs no menu of its own.
        QMenu* group = categories.size() == 1 ? menu() : menu()->addMenu(category);
        for (const BrushSettings& brush : brushes) {
            if (brush.category != category) continue;
            QAction* action = group->addAction(brush.name);
            action->setCheckable(true);
            action->setChecked(brush.id == model_.brushes().activeBrush().id);
            if (action->isChecked() && group != menu()) {
                group->menuAction()->setCheckable(true); // marks the category of the brush
                group->menuAction()->setChecked(true);
            }
            connect(action, &QAction::triggered, this,
                    guarding(model_, [this, brush] { model_.brushes().choose(brush); }));
        }
    }
}

void BrushPresetMenu::paintEvent(QPaintEvent*) {
    // Looks like the combo box that it is to the user.
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.currentText = text();
    option.state.setFlag(QStyle::State_On, isDown());
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

} // namespace qirn
