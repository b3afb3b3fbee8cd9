#include "shell/panels/brush/BrushKeeping.h"

#include "app/model/Brushes.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace qirn {

namespace {
constexpr int kLongestName = 120;
} // namespace

BrushKeeping::BrushKeeping(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      name_(new QLineEdit(this)) {
    name_->setObjectName(QStringLiteral("brushName"));
    name_->setAccessibleName(tr("Name"));
    name_->setPlaceholderText(tr("Name"));
    name_->setToolTip(tr("The name of a new preset of your own"));
    name_->setMaxLength(kLongestName);
    connect(name_, &QLineEdit::returnPressed, this, [this] {
        if (!name_->text().trimmed().isEmpty()) saveAsNew();
    });
    auto* save = button("saveBrush", tr("Save as new"), tr("Keeps the brush as a preset of your own"),
                        [this] { saveAsNew(); });
    update_ = button("updateBrush", tr("Update preset"), tr("Keeps the settings in your preset"),
                     [this] { model_.brushes().updateUserBrush(); });
    reset_ = button("resetBrush", tr("Reset"), tr("Back to the saved preset"),
                    [this] { model_.brushes().resetBrush(); });
    auto* heading = new QLabel(tr("Import / export"), this);
    heading->setForegroundRole(QPalette::PlaceholderText);
    auto* import = button("importBrushes", tr("Import…"), tr("Adds the brushes of a .qirnbrushes file"),
                          [this] { model_.brushes().importBrushes(); });
    auto* out = button("exportBrushes", tr("Export…"),
                       tr("Saves your brushes as a .qirnbrushes file; the active brush where you have none"),
                       [this] { model_.brushes().exportBrushes(); });
    import->setAccessibleName(tr("Import brushes"));
    out->setAccessibleName(tr("Export brushes"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(name_, 0, 0);
    grid->addWidget(save, 0, 1);
    grid->addWidget(update_, 1, 0);
    grid->addWidget(reset_, 1, 1);
    grid->addWidget(heading, 2, 0, 1, 2);
    grid->addWidget(import, 3, 0);
    grid->addWidget(out, 3, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    QirnKit::followMetrics(this, [=, this](const Metrics& m) {
        grid->setContentsMargins(0, m.gap, 0, 0);
        heading->setFont(ChromeFont::caption());
        heading->setContentsMargins(0, m.gap, 0, 0);
        name_->setMinimumWidth(m.leastButton);
    });
}

QPushButton* BrushKeeping::button(const char* name, const QString& text, const QString& tip,
                                  const std::function<void()>& run) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this, guarding(model_, run));
    return button;
}

void BrushKeeping::saveAsNew() {
    guarded(model_, [this] { model_.brushes().saveBrushAsNew(name_->text().simplified()); });
    name_->clear();
}

void BrushKeeping::show(bool isOwn, bool isChanged) {
    update_->setVisible(isOwn);
    update_->setEnabled(isChanged);
    reset_->setEnabled(isChanged);
}

} // namespace qirn
