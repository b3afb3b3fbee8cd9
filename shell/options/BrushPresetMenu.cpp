#include "shell/options/BrushPresetMenu.h"

#include "app/desktop/HostWords.h"
#include "app/model/Brushes.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/PictureMenu.h"
#include "shell/panels/brush/BrushSample.h"

#include <QIconEngine>
#include <QStyleOption>
#include <QStylePainter>

namespace qirn {

namespace {

/// A brush's preview on its plate, painted once it is there. It borrows the previews.
class PreviewIcon final : public QIconEngine {
public:
    PreviewIcon(const BrushSettings& brush, BrushPreviewCache& previews)
        : brush_(brush),
          previews_(previews) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        BrushSample::paint(*painter, rect, picture_.of(brush_, previews_, BrushSample::scaleFor(*painter)));
    }
    QPixmap pixmap(const QSize&, QIcon::Mode, QIcon::State) override { return {}; }
    QIconEngine* clone() const override { return std::make_unique<PreviewIcon>(*this).release(); }

private:
    BrushSettings brush_;
    BrushPreviewCache& previews_;
    BrushPicture picture_;
};

} // namespace

BrushPresetMenu::BrushPresetMenu(PaintModel& model, QWidget* parent) : QPushButton(parent), model_(model) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setObjectName(QStringLiteral("Brush preset"));
    setToolTip(tr("Brush preset"));
    setMenu(groupOf({}));
    connect(menu(), &QMenu::aboutToShow, this, &BrushPresetMenu::fill);
    connect(&model, &PaintModel::changed, this, &BrushPresetMenu::refresh);
    refresh();
}

void BrushPresetMenu::refresh() {
    const QString name = model_.brushes().activeBrush().name;
    setText(name);
    setShortcut({}); // which a "&" in the name would be
    setAccessibleName(tr("Brush preset %1").arg(name));
}

QSize BrushPresetMenu::sizeHint() const {
    // The same for every name, so that the options beside it stay where they are.
    return {QirnKitHost::metrics().controlWidth, QirnKitHost::metrics().controlHeight};
}

QMenu* BrushPresetMenu::groupOf(const QString& category) {
    auto* group = new PictureMenu(category, BrushSample::pictureSize, this);
    connect(&model_.brushes().previews(), &BrushPreviewCache::ready, group, qOverload<>(&QWidget::update));
    return group;
}

void BrushPresetMenu::fill() {
    menu()->clear();
    qDeleteAll(groups_);
    groups_.clear();
    BrushPreviewCache& previews = model_.brushes().previews();
    QStringList categories;
    const std::vector<BrushSettings> brushes = model_.brushes().brushesFor(model_.brushes().brushTool());
    for (const BrushSettings& brush : brushes)
        if (!categories.contains(brush.category)) categories << brush.category;
    for (const QString& category : categories) {
        // One category needs no menu of its own.
        QMenu* group = menu();
        if (categories.size() > 1) {
            group = groups_.emplace_back(groupOf(menuText(category)));
            menu()->addMenu(group);
        }
        for (const BrushSettings& brush : brushes) {
            if (brush.category != category) continue;
            const QIcon icon(std::make_unique<PreviewIcon>(brush, previews).release()); // it owns its engine
            QAction* action = group->addAction(icon, menuText(brush.name));
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
