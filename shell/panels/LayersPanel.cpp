#include "shell/panels/LayersPanel.h"

#include "app/desktop/HostWords.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/OpacityPreview.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/IconButton.h"
#include "shell/panels/LayerRowDelegate.h"
#include "shell/panels/LayersModel.h"

#include <cmath>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace qirn {

LayersPanel::LayersPanel(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      title_(new QLabel(this)),
      blend_(new QComboBox(this)),
      opacity_(new ChromeSlider(tr("Opacity"), {0, 1, 0.01}, NumberFormat::percent(), this)),
      rows_(new LayersModel(model, this)),
      list_(new QListView(this)),
      delete_(new IconButton(Icon::trash, tr("Delete layer"), this, &Metrics::smallIcon)) {
    title_->setForegroundRole(QPalette::PlaceholderText);
    auto* add = new IconButton(Icon::plus, hostWords(tr("New layer (⇧⌘N)")), this, &Metrics::smallIcon);
    add->setObjectName(QStringLiteral("newLayer"));
    delete_->setObjectName(QStringLiteral("deleteLayer"));

    blend_->setObjectName(QStringLiteral("blendMode"));
    blend_->setAccessibleName(tr("Blend Mode"));
    blend_->setToolTip(tr("Blend mode: how this layer mixes with the layers below"));
    blend_->setFocusPolicy(Qt::TabFocus);
    for (const BlendModeRow& row : kBlendModes)
        blend_->addItem(QCoreApplication::translate("BlendMode", row.displayName));
    opacity_->setObjectName(QStringLiteral("layerOpacity"));
    opacity_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    list_->setObjectName(QStringLiteral("layers"));
    list_->setAccessibleName(tr("Layers"));
    list_->setModel(rows_);
    list_->setUniformItemSizes(true);
    list_->setItemDelegate(new LayerRowDelegate(list_));
    list_->setFocusPolicy(Qt::TabFocus);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);

    auto* head = new QHBoxLayout;
    head->addWidget(title_, 1);
    head->addWidget(add);
    head->addWidget(delete_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(head);
    column->addWidget(blend_);
    column->addWidget(opacity_);
    column->addWidget(list_, 1);
    QirnKit::followMetrics(this, [this, head](const Metrics& m) {
        title_->setFont(ChromeFont::caption());
        head->setSpacing(m.tightGap);
        list_->setMinimumHeight(4 * LayerRowDelegate::rowHeight() + 2 * list_->frameWidth());
        rows_->setThumbnailSide(static_cast<int>(std::lround(m.px(26) * devicePixelRatioF())));
    });

    connect(add, &IconButton::clicked, this, guarding(model_, [this] { LayerEdits::addLayer(model_); }));
    connect(delete_, &IconButton::clicked, this,
            guarding(model_, [this] { LayerEdits::deleteLayer(model_); }));
    connect(blend_, &QComboBox::activated, this, guarding(model_, [this](int mode) {
                if (const DocSession* session = model_.current())
                    LayerEdits::setLayer(
                        model_, session->doc().activeIndex(), tr("Blend Mode"),
                        [mode](Layer& layer) { layer.blendMode = static_cast<BlendMode>(mode); });
            }));
    connect(opacity_, &ChromeSlider::valueChanged, this, guarding(model_, [this](double opacity) {
                if (const DocSession* session = model_.current())
                    model_.opacity().show(session->doc().activeIndex(), opacity);
            }));
    connect(opacity_, &ChromeSlider::editingFinished, this,
            guarding(model_, [this] { model_.opacity().commit(); }));
    connect(list_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            guarding(model_, [this](const QModelIndex& current, const QModelIndex&) {
                if (!isReading_ && current.isValid())
                    LayerEdits::setActiveLayer(model_, rows_->layerOfRow(current.row()));
            }));
    connect(&model, &PaintModel::changed, this, &LayersPanel::refresh);
    refresh();
}

void LayersPanel::refresh() {
    const DocSession* session = model_.current();
    setEnabled(session != nullptr);
    if (!session) return;
    const PaintDocument& doc = session->doc();
    title_->setText(tr("Layers (%1)").arg(doc.layerCount()));
    const QSignalBlocker blocked(blend_);
    blend_->setCurrentIndex(static_cast<int>(doc.activeLayer().blendMode));
    opacity_->setValue(doc.activeLayer().opacity);
    isReading_ = true;
    rows_->refresh();
    list_->setCurrentIndex(rows_->index(rows_->rowOfLayer(doc.activeIndex())));
    isReading_ = false;
}

} // namespace qirn
