#include "shell/sheets/RenameLayerSheet.h"

#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/PaintModel.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace qirn {

RenameLayerSheet::RenameLayerSheet(PaintModel& model, const QUuid& layer, QWidget* parent)
    : Sheet(model, tr("Rename Layer"), {}, parent),
      layer_(layer),
      name_(new QLineEdit(this)) {
    const PaintDocument& doc = model.current()->doc();
    if (const auto index = doc.indexOf(layer)) name_->setText(doc.layer(*index).name);
    name_->setObjectName(QStringLiteral("newLayerName"));
    name_->setAccessibleName(tr("Name"));
    name_->setToolTip(tr("Without a name the layer keeps the one it has"));
    name_->selectAll();
    auto* form = new QFormLayout;
    form->addRow(tr("Name"), name_);
    fields().addLayout(form);
    addButton(tr("Cancel"), Role::cancel);
    QPushButton* rename = addButton(tr("Rename"), Role::standard);
    connect(rename, &QPushButton::clicked, this, &RenameLayerSheet::rename);
    setLeastWidth(360);
    firstField = name_;
}

void RenameLayerSheet::rename() {
    closeAnd([&model = model(), layer = layer_, name = name_->text()] {
        LayerEdits::renameLayer(model, layer, name);
    });
}

} // namespace qirn
