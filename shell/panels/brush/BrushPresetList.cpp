#include "shell/panels/brush/BrushPresetList.h"

#include "app/desktop/HostWords.h"
#include "app/model/Brushes.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/panels/brush/BrushPresetsModel.h"
#include "shell/panels/brush/BrushSample.h"

#include <algorithm>
#include <utility>

#include <QContextMenuEvent>
#include <QMenu>
#include <QStyledItemDelegate>

namespace qirn {

namespace {

constexpr int kMostAskedFor = 200; // presets; of more, those in sight

/// Where the parts of a preset's row stand: the preview below the name, or before it in a wide panel.
struct Places {
    QRectF name, plate;
    int height;

    explicit Places(const QRect& row) {
        const Metrics& m = QirnKitHost::metrics();
        const QSize picture = BrushSample::pictureSize();
        const int line = m.bodyText + m.gap;
        const QRectF inside = QRectF(row).adjusted(m.gap, m.tightGap, -m.gap, -m.tightGap);
        const bool isWide = inside.width() >= 1.7 * picture.width();
        height = picture.height() + 2 * m.tightGap + (isWide ? 0 : line);
        if (isWide) {
            plate = QRectF(inside.topLeft(), picture);
            name = inside.adjusted(picture.width() + m.groupGap, 0, 0, 0);
            name.setHeight(picture.height());
        } else {
            name = QRectF(inside.topLeft(), QSizeF(inside.width(), line));
            plate = QRectF(inside.left(), name.bottom(), inside.width(), picture.height());
        }
        plate = ChromePaint::visual(inside, plate);
        name = ChromePaint::visual(inside, name);
    }
};

class PresetDelegate final : public QStyledItemDelegate {
public:
    PresetDelegate(const BrushPresetsModel& rows, QObject* parent)
        : QStyledItemDelegate(parent),
          rows_(rows) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Metrics& m = QirnKitHost::metrics();
        const ChromeColors& c = QirnKitHost::colors();
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        painter->save();
        if (rows_.brushOf(index)) {
            row.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);
            const Places places(row.rect);
            painter->setFont(row.font);
            ChromePaint::text(*painter, places.name, Qt::AlignLeft | Qt::AlignVCenter, row.text, c.text);
            BrushSample::paint(*painter, places.plate,
                               rows_.previewOf(index, BrushSample::scaleFor(*painter)));
        } else {
            painter->setFont(ChromeFont::caption());
            ChromePaint::text(*painter, QRectF(row.rect).adjusted(0, 0, 0, -m.inset),
                              Qt::AlignLeft | Qt::AlignBottom, row.text, c.dim);
        }
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        if (!rows_.brushOf(index)) return {0, QirnKitHost::metrics().rowHeight};
        const auto* view = static_cast<const QAbstractItemView*>(option.widget);
        return {0, Places(view->viewport()->rect()).height};
    }

private:
    const BrushPresetsModel& rows_;
};

bool isFound(const BrushSettings& brush, const QStringList& words) {
    return std::all_of(words.begin(), words.end(), [&](const QString& word) {
        return brush.name.contains(word, Qt::CaseInsensitive) ||
               brush.category.contains(word, Qt::CaseInsensitive);
    });
}

} // namespace

BrushPresetList::BrushPresetList(PaintModel& model, QWidget* parent)
    : QListView(parent),
      model_(model),
      rows_(new BrushPresetsModel(model.brushes().previews(), this)) {
    setObjectName(QStringLiteral("brushPresets"));
    setAccessibleName(tr("Presets"));
    setModel(rows_);
    setItemDelegate(new PresetDelegate(*rows_, this));
    setFocusPolicy(Qt::TabFocus);
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false); // what stands behind the list shows
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setResizeMode(QListView::Adjust);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QListView::clicked, this, &BrushPresetList::choose);
    connect(&model.brushes().previews(), &BrushPreviewCache::ready, viewport(),
            qOverload<>(&QWidget::update));
    connect(rows_, &QAbstractItemModel::modelReset, this, [this] { allAsked_ = false; });
    QirnKit::followMetrics(this, [this](const Metrics&) { scheduleDelayedItemsLayout(); });
}

void BrushPresetList::refresh() {
    const Brushes& brushes = model_.brushes();
    const QStringList words = search_.split(u' ', Qt::SkipEmptyParts);
    std::vector<BrushSettings> shown =
        words.isEmpty() ? brushes.brushesFor(model_.tool()) : brushes.allBrushes();
    std::erase_if(shown, [&](const BrushSettings& brush) { return !isFound(brush, words); });
    rows_->show(shown);
    selectionModel()->select(rows_->indexOf(brushes.activeBrush().id), QItemSelectionModel::ClearAndSelect);
}

void BrushPresetList::setSearch(const QString& words) {
    search_ = words;
    refresh();
}

bool BrushPresetList::isEmpty() const {
    return rows_->rowCount() == 0;
}

void BrushPresetList::chooseFirst() {
    for (int row = 0; row < rows_->rowCount(); ++row)
        if (rows_->brushOf(rows_->index(row))) return choose(rows_->index(row));
}

QRect BrushPresetList::chosenRect() const {
    return visualRect(rows_->indexOf(model_.brushes().activeBrush().id));
}

void BrushPresetList::choose(const QModelIndex& index) {
    const BrushSettings* brush = rows_->brushOf(index);
    if (!brush) return;
    guarded(model_, [&, preset = *brush] { model_.brushes().choose(preset); });
}

int BrushPresetList::heightOfRows() const {
    int height = 0;
    for (int row = 0; row < rows_->rowCount(); ++row) height += sizeHintForIndex(rows_->index(row)).height();
    return height;
}

void BrushPresetList::updateGeometries() {
    QListView::updateGeometries();
    const int height = heightOfRows();
    if (height == minimumHeight() && height == maximumHeight()) return;
    setFixedHeight(height);
}

void BrushPresetList::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (std::exchange(allAsked_, true) || rows_->rowCount() > kMostAskedFor) return;
    rows_->askForAll(devicePixelRatioF() * QirnKitHost::metrics().zoom);
}

void BrushPresetList::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        return QListView::keyPressEvent(event);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return choose(currentIndex());
    default:
        event->ignore(); // letters and Delete are the canvas's
    }
}

void BrushPresetList::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void BrushPresetList::focusInEvent(QFocusEvent* event) {
    if (!currentIndex().isValid())
        selectionModel()->setCurrentIndex(rows_->indexOf(model_.brushes().activeBrush().id),
                                          QItemSelectionModel::NoUpdate);
    QListView::focusInEvent(event);
    Q_EMIT currentMoved(visualRect(currentIndex()));
}

void BrushPresetList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (hasFocus()) Q_EMIT currentMoved(visualRect(current));
}

void BrushPresetList::scrollTo(const QModelIndex&, ScrollHint) {} // all rows are in sight of the list itself

QItemSelectionModel::SelectionFlags BrushPresetList::selectionCommand(const QModelIndex&,
                                                                      const QEvent*) const {
    return QItemSelectionModel::NoUpdate; // what is selected is the active brush
}

void BrushPresetList::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    const BrushSettings* brush = rows_->brushOf(index);
    if (!brush || brush->isBuiltIn) return;
    const QString name = fontMetrics().elidedText(brush->name, Qt::ElideMiddle, width());
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Delete \"%1\"…").arg(menuText(name)), this,
                    guarding(model_, [this, preset = *brush] { model_.brushes().deleteUserBrush(preset); }));
    menu->popup(byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

} // namespace qirn
