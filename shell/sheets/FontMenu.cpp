#include "shell/sheets/FontMenu.h"

#include "app/text/TextRenderer.h"
#include "kit/QirnKit.h"

#include <QFontDatabase>
#include <QListView>
#include <QStyledItemDelegate>

namespace qirn {

namespace {

/// A face is loaded when its row is first drawn, so that thousands of them cost nothing until then.
class OwnFace final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        const Metrics& m = QirnKitHost::metrics();
        return {m.controlWidth, m.rowHeight};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!QFontDatabase::writingSystems(option->text).contains(QFontDatabase::Latin)) return;
        QFont face(option->text);
        face.setPixelSize(QirnKitHost::metrics().titleText);
        option->font = face;
    }
};

} // namespace

FontMenu::FontMenu(QWidget* parent) : QComboBox(parent) {
    setAccessibleName(tr("Font"));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    addItems(TextRenderer::families());
    setItemDelegate(new OwnFace(this));
    static_cast<QListView*>(view())->setUniformItemSizes(true);
}

} // namespace qirn
