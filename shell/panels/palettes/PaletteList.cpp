#include "shell/panels/palettes/PaletteList.h"

#include "app/desktop/HostWords.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "formats/palettes/PaletteLibrary.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"

#include <algorithm>
#include <utility>

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QStyledItemDelegate>

namespace qirn {

namespace {

constexpr int kColorsRole = Qt::UserRole;
constexpr std::size_t kShownColors = 6; // of each palette, beside its name

class Delegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Metrics& m = QirnKitHost::metrics();
        const ChromeColors& c = QirnKitHost::colors();
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        row.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);
        const auto colors = index.data(kColorsRole).value<QList<QColor>>();
        QRectF name = QRectF(row.rect).adjusted(m.gap, 0, -m.gap, 0);
        const double wide = m.px(9), high = m.px(14);
        QRectF strip(name.right() - wide * kShownColors, row.rect.center().y() - high / 2,
                     wide * kShownColors, high);
        name.setRight(strip.left() - m.gap);
        ChromePaint::text(*painter, ChromePaint::visual(row.rect, name), Qt::AlignLeft | Qt::AlignVCenter,
                          row.text, c.text);
        if (colors.isEmpty()) return;
        strip.setWidth(wide * static_cast<double>(colors.size()));
        for (qsizetype i = 0; i < colors.size(); ++i) {
            const QRectF part(strip.left() + wide * static_cast<double>(i), strip.top(), wide, high);
            painter->fillRect(ChromePaint::snapped(*painter, ChromePaint::visual(row.rect, part)), colors[i]);
        }
        ChromePaint::box(*painter, ChromePaint::visual(row.rect, strip), 0, {}, c.edge);
    }
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {0, QirnKitHost::metrics().rowHeight};
    }
};

} // namespace

class PaletteRows final : public QAbstractListModel {
public:
    struct Row {
        QUuid id;
        QString name;
        std::size_t count = 0;
        QList<QColor> colors; // the first ones

        bool operator==(const Row&) const = default;
    };

    using QAbstractListModel::QAbstractListModel;

    void show(std::vector<Row> rows) {
        if (rows == rows_) return;
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    }
    const std::vector<Row>& rows() const { return rows_; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const Row& row = rows_[static_cast<std::size_t>(index.row())];
        const auto words = [&row] {
            return PaletteList::tr("%1, %Ln colors", nullptr, static_cast<int>(row.count)).arg(row.name);
        };
        switch (role) {
        case Qt::DisplayRole:
            return row.name;
        case Qt::AccessibleTextRole:
            return words();
        case Qt::ToolTipRole:
            return plainTip(words());
        case kColorsRole:
            return QVariant::fromValue(row.colors);
        default:
            return {};
        }
    }

private:
    std::vector<Row> rows_;
};

PaletteList::PaletteList(PaintModel& model, QWidget* parent)
    : QListView(parent),
      model_(model),
      rows_(new PaletteRows(this)) {
    setObjectName(QStringLiteral("palettes"));
    setAccessibleName(tr("Palette library"));
    setModel(rows_);
    setItemDelegate(new Delegate(this));
    setUniformItemSizes(true);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            guarding(model, [this](const QModelIndex& row, const QModelIndex&) {
                if (!isReading_ && row.isValid())
                    model_.palettes().selectPalette(rows_->rows()[static_cast<std::size_t>(row.row())].id);
            }));
}

void PaletteList::refresh() {
    std::vector<PaletteRows::Row> rows;
    int current = 0;
    const QUuid chosen = model_.palettes().currentPalette().id;
    for (const auto* list : {&PaletteLibrary::builtIn(), &model_.palettes().userPalettes()}) {
        for (const Palette& palette : *list) {
            if (palette.id == chosen) current = static_cast<int>(rows.size());
            rows.push_back({palette.id, palette.name, palette.colors.size(), {}});
            for (std::size_t i = 0; i < std::min(kShownColors, palette.colors.size()); ++i)
                rows.back().colors << shownColor(palette.colors[i].color);
        }
    }
    isReading_ = true;
    rows_->show(std::move(rows));
    if (currentIndex().row() != current) setCurrentIndex(rows_->index(current));
    isReading_ = false;
}

void PaletteList::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return QListView::keyPressEvent(event);
    default:
        event->ignore();
    }
}

} // namespace qirn
