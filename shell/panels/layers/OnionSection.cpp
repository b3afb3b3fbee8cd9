#include "shell/panels/layers/OnionSection.h"

#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/controls/IconButton.h"
#include "kit/rows/ControlRows.h"

#include <algorithm>

#include <QBoxLayout>
#include <QSignalBlocker>

namespace qirn {

namespace {

using Row = ControlRow<PaintModel>;

constexpr int kMostLayers = 5; // on each side of the active one

OnionSkin onionOf(const PaintModel& model) {
    return model.current() ? model.current()->doc().onion : OnionSkin();
}

template <auto kField, class Value> Value get(const PaintModel& model) {
    if constexpr (std::is_same_v<Value, int>)
        return static_cast<int>(std::clamp<int64_t>(onionOf(model).*kField, 0, kMostLayers));
    else
        return onionOf(model).*kField;
}
template <auto kField, class Value> void set(PaintModel& model, Value value) {
    LayerEdits::setOnion(model, [value](OnionSkin& onion) { onion.*kField = value; });
}

#define TEXT(text) QT_TRANSLATE_NOOP("qirn::OnionSection", text)
constexpr Row kRows[] = {
    {nullptr, Row::Stepper{TEXT("Layers below"), TEXT("Layers below: %1"), 0, kMostLayers, 1,
                           TEXT("How many layers below the current one show as ghosts"),
                           get<&OnionSkin::before, int>, set<&OnionSkin::before, int>}},
    {nullptr, Row::Stepper{TEXT("Layers above"), TEXT("Layers above: %1"), 0, kMostLayers, 1,
                           TEXT("How many layers above the current one show as ghosts"),
                           get<&OnionSkin::after, int>, set<&OnionSkin::after, int>}},
    {nullptr, Row::Slider{TEXT("Ghost strength"),
                          {0, 1, 0.01},
                          NumberFormat::percent(),
                          TEXT("How strongly the nearest ghosts show; each further one is fainter"),
                          get<&OnionSkin::opacity, double>,
                          set<&OnionSkin::opacity, double>}},
    {nullptr,
     Row::Toggle{TEXT("Color ghosts (red below, green above)"), TEXT("Off: ghosts keep their own colors"),
                 get<&OnionSkin::tint, bool>, set<&OnionSkin::tint, bool>}},
};
#undef TEXT

} // namespace

OnionSection::OnionSection(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      fold_(new IconButton(Icon::chevronRight, {}, this, &Metrics::chevron)),
      enabled_(new ChromeToggle(tr("Onion skin"), this)),
      rows_(
          new ControlRows<PaintModel>(model, kRows, RowBox::Form::column,
                                      {[](const char* source) { return tr(source); },
                                       [&model](const std::function<void()>& body) { guarded(model, body); }},
                                      this)) {
    fold_->setObjectName(QStringLiteral("showOnion"));
    enabled_->setObjectName(QStringLiteral("onionSkin"));
    enabled_->setToolTip(tr("Shows the layers next to the current one as see-through ghosts (view only — "
                            "exports are not affected)"));
    auto* title = new QHBoxLayout;
    title->setSpacing(0);
    title->addWidget(fold_);
    title->addWidget(enabled_, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(title);
    column->addWidget(rows_);
    QirnKit::followMetrics(this, [this, column](const Metrics& m) {
        fold_->setFixedWidth(m.smallButton);
        column->setSpacing(m.tightGap);
    });
    connect(fold_, &IconButton::clicked, this, [this] { setShown(rows_->isHidden()); });
    connect(enabled_, &ChromeToggle::toggled, this,
            guarding(model_, [this](bool on) { set<&OnionSkin::enabled, bool>(model_, on); }));
    setShown(false);
}

void OnionSection::setShown(bool showOnion) {
    rows_->setVisible(showOnion);
    fold_->setIcon(Icons::themed(showOnion ? Icon::chevronDown : Icon::chevronRight));
    fold_->setTip(showOnion ? tr("Hide onion skin settings") : tr("Show onion skin settings"));
}

void OnionSection::refresh() {
    const QSignalBlocker blocked(enabled_);
    enabled_->setChecked(onionOf(model_).enabled);
    rows_->refresh();
}

} // namespace qirn
