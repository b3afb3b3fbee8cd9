#include "shell/sheets/SheetHost.h"

#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "shell/sheets/CanvasSizeSheet.h"
#include "shell/sheets/ExportSheet.h"
#include "shell/sheets/ImageSizeSheet.h"
#include "shell/sheets/NewDocumentSheet.h"
#include "shell/sheets/RecoverySheet.h"
#include "shell/sheets/RenameLayerSheet.h"
#include "shell/sheets/TextSheet.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>

namespace qirn {

namespace {

template <class Content> Sheet* make(PaintModel& model, const PaintSheet&, QWidget* parent) {
    return new Content(model, parent);
}

struct SheetRow {
    PaintSheet::Kind kind;
    Sheet* (*make)(PaintModel&, const PaintSheet&, QWidget* parent);
};

constexpr SheetRow kSheets[] = {
    {PaintSheet::Kind::text,
     [](PaintModel& model, const PaintSheet& sheet, QWidget* parent) -> Sheet* {
         return new TextSheet(model, sheet.textRequest, parent);
     }},
    {PaintSheet::Kind::newDocument, make<NewDocumentSheet>},
    {PaintSheet::Kind::exportPicture, make<ExportSheet>},
    {PaintSheet::Kind::imageSize, make<ImageSizeSheet>},
    {PaintSheet::Kind::canvasSize, make<CanvasSizeSheet>},
    {PaintSheet::Kind::recovery, make<RecoverySheet>},
    {PaintSheet::Kind::renameLayer,
     [](PaintModel& model, const PaintSheet& sheet, QWidget* parent) -> Sheet* {
         return new RenameLayerSheet(model, sheet.layer, parent);
     }},
};

/// Darkens the window round the sheet.
class Shade final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter(this).fillRect(event->rect(), QColor(0, 0, 0, 128));
    }
};

} // namespace

SheetHost::SheetHost(PaintModel& model, QWidget* covered)
    : QScrollArea(covered->parentWidget()),
      model_(model),
      covered_(covered) {
    setObjectName(QStringLiteral("sheetHost"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    hide();
    covered_->installEventFilter(this);
    connect(&model, &PaintModel::changed, this, guarding(model, [this] { refresh(); }));
}

void SheetHost::refresh() {
    if (model_.sheet() == shown_) return;
    if (shown_) takeDown();
    if (model_.sheet()) bringUp(*model_.sheet());
}

void SheetHost::bringUp(const PaintSheet& which) {
    shown_ = which;
    auto* shade = new Shade;
    auto* middle = new QGridLayout(shade);
    QirnKit::followMetrics(shade, [middle](const Metrics& m) {
        middle->setContentsMargins(m.margin, m.margin, m.margin, m.margin);
    });
    for (const SheetRow& row : kSheets)
        if (row.kind == which.kind) sheet_ = row.make(model_, which, shade);
    middle->addWidget(sheet_, 0, 1, Qt::AlignVCenter);
    for (const int beside : {0, 2}) middle->setColumnStretch(beside, 1); // its height is that of its width
    setWidget(shade);
    shade->setAutoFillBackground(false);
    setGeometry(covered_->geometry());
    raise();
    show();
    focusBefore_ = QApplication::focusWidget();
    if (sheet_->firstField) sheet_->firstField->setFocus(Qt::PopupFocusReason);
    covered_->setEnabled(false);
}

void SheetHost::takeDown() {
    shown_.reset();
    covered_->setEnabled(true);
    if (focusBefore_) focusBefore_->setFocus(Qt::PopupFocusReason);
    hide();
    QWidget* const shade = takeWidget();
    shade->hide();
    shade->setParent(this); // destroyed with the window if no event loop runs before that
    shade->deleteLater();   // the click of one of its buttons may be on the stack
}

bool SheetHost::eventFilter(QObject* watched, QEvent* event) {
    if (watched == covered_ && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        setGeometry(covered_->geometry());
    return QScrollArea::eventFilter(watched, event);
}

void SheetHost::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (event->key() == Qt::Key_Escape) return model_.closeSheet();
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) return;
    auto* button = qobject_cast<QPushButton*>(QApplication::focusWidget());
    if (!button && sheet_) button = sheet_->defaultButton();
    if (button) button->click();
}

void SheetHost::keyReleaseEvent(QKeyEvent* event) {
    event->accept();
}

} // namespace qirn
