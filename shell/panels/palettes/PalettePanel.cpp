#include "shell/panels/palettes/PalettePanel.h"

#include "app/model/Colors.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/model/Palettes.h"
#include "kit/ChromeFont.h"
#include "kit/QirnKit.h"
#include "kit/controls/ChromeNote.h"
#include "kit/controls/IconButton.h"
#include "shell/panels/color/SwatchGrid.h"
#include "shell/panels/palettes/PaletteList.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace qirn {

namespace {

constexpr int kLibraryRows = 3, kSwatchRows = 3; // that show at least

/// The colors scroll by themselves, so that the controls stay in reach.
class SwatchScroller final : public QScrollArea {
public:
    SwatchScroller(SwatchGrid* grid, QWidget* parent) : QScrollArea(parent) {
        setWidget(grid);
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }

    QSize sizeHint() const override { return minimumSize(); } // it grows where there is room

protected:
    void keyPressEvent(QKeyEvent* event) override { event->ignore(); }
};

} // namespace

PalettePanel::PalettePanel(PaintModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      library_(new PaletteList(model, this)),
      current_(new ChromeNote({}, this, ChromeFont::caption)) {
    auto* colors = swatches();
    auto* note = new QLabel(
        tr("Qirn palettes are kept as they are. Adding or removing a color makes your own copy."), this);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);

    auto* add = button("addColor", tr("Add color"), &PalettePanel::addColor);
    delete_ = button("deletePalette", tr("Delete palette"), &PalettePanel::remove);
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("paletteName"));
    name_->setPlaceholderText(tr("New palette name"));
    name_->setAccessibleName(tr("New palette name"));
    name_->setToolTip(tr("The name that \"New\" and \"Rename to\" give"));
    auto* make = button("newPalette", tr("New"), &PalettePanel::makePalette);
    auto* recent =
        new IconButton(Icon::grid, tr("New palette from recent colors"), this, &Metrics::smallIcon);
    recent->setObjectName(QStringLiteral("newPaletteFromRecent"));
    connect(recent, &IconButton::clicked, this, guarding(model, [this] { makeFromRecent(); }));
    rename_ = button("renamePalette", tr("Rename to"), &PalettePanel::rename);
    auto* above = new ChromeNote(tr("(type the name above)"), this);
    auto* exchange = new ChromeNote(tr("Import / export"), this, ChromeFont::caption);
    auto* import = button("importPalette", tr("Import…"), &PalettePanel::importFile);
    auto* gpl = button("exportGpl", tr("Export .gpl"), &PalettePanel::exportGpl);
    auto* aco = button("exportAco", tr("Export .aco"), &PalettePanel::exportAco);
    for (QPushButton* each : {import, gpl, aco})
        each->setToolTip(tr("GIMP .gpl, Photoshop .aco, or a text list of #hex colors"));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new ChromeNote(tr("Palette library"), this, ChromeFont::caption));
    column->addWidget(library_, 1);
    column->addWidget(current_);
    column->addWidget(colors, 2);
    column->addWidget(note);
    column->addLayout(row({add, delete_}));
    QHBoxLayout* naming = row({name_, make, recent});
    QHBoxLayout* renaming = row({rename_, above});
    for (const int narrow : {1, 2}) naming->setStretch(narrow, 0);
    renaming->setStretch(0, 0);
    column->addLayout(naming);
    column->addLayout(renaming);
    column->addWidget(exchange);
    column->addWidget(import);
    column->addLayout(row({gpl, aco}));
    QirnKit::followMetrics(this, [this, column, colors, note](const Metrics& m) {
        column->setSpacing(m.gap);
        note->setFont(ChromeFont::small());
        library_->setMinimumHeight(kLibraryRows * m.rowHeight + 2 * library_->frameWidth());
        colors->setMinimumHeight(kSwatchRows * m.px(24));
    });

    connect(name_, &QLineEdit::textChanged, this, &PalettePanel::refresh);
    connect(name_, &QLineEdit::returnPressed, make, [this, make] {
        if (!name_->text().trimmed().isEmpty()) make->click();
    });
    connect(&model, &PaintModel::changed, this, &PalettePanel::refresh);
}

QWidget* PalettePanel::swatches() {
    grid_ = new SwatchGrid(QStringLiteral("swatches"), tr("Colors"), SwatchGrid::Editing::yes, this);
    connect(grid_, &SwatchGrid::picked, this, guarding(model_, [this](int index) {
                const PaintColor color = grid_->colors()[static_cast<std::size_t>(index)].color;
                model_.colors().pick(color, Colors::AddRecent::yes);
            }));
    connect(grid_, &SwatchGrid::removed, this, guarding(model_, [this](int index) {
                model_.palettes().removeFromPalette(static_cast<std::size_t>(index));
            }));
    connect(grid_, &SwatchGrid::moved, this, guarding(model_, [this](int from, int to) {
                model_.palettes().moveInPalette(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
            }));
    return new SwatchScroller(grid_, this);
}

QPushButton* PalettePanel::button(const char* name, const QString& title, void (PalettePanel::*run)()) {
    auto* button = new QPushButton(title, this);
    button->setObjectName(QLatin1String(name));
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this, guarding(model_, [this, run] { (this->*run)(); }));
    return button;
}

QHBoxLayout* PalettePanel::row(std::initializer_list<QWidget*> parts) {
    auto* row = new QHBoxLayout; // its spacing is the style's
    for (QWidget* part : parts) row->addWidget(part, 1);
    return row;
}

void PalettePanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    guarded(model_, [this] { refresh(); });
}

void PalettePanel::refresh() {
    if (!isVisible()) return;
    library_->refresh();
    const Palette& palette = model_.palettes().currentPalette();
    current_->setText(tr("Current: %1").arg(palette.name));
    grid_->setCanReorder(!palette.isBuiltIn);
    grid_->setColors(palette.colors);
    grid_->setChosen(model_.colors().primary());
    delete_->setEnabled(!palette.isBuiltIn);
    rename_->setEnabled(!name_->text().trimmed().isEmpty());
}

QString PalettePanel::takeName() {
    const QString name = name_->text().trimmed();
    if (rename_->hasFocus()) name_->setFocus(Qt::OtherFocusReason); // it is off without a name
    name_->clear();
    return name;
}

void PalettePanel::addColor() {
    model_.palettes().addToPalette(model_.colors().primary());
}
void PalettePanel::makePalette() {
    model_.palettes().newPalette(takeName(), Palettes::FromRecent::no);
}
void PalettePanel::makeFromRecent() {
    model_.palettes().newPalette(takeName(), Palettes::FromRecent::yes);
}
void PalettePanel::rename() {
    model_.palettes().renamePalette(takeName());
}
void PalettePanel::remove() {
    model_.palettes().deletePalette();
}
void PalettePanel::importFile() {
    model_.palettes().importPalette();
}
void PalettePanel::exportGpl() {
    model_.palettes().exportPalette(Palettes::PaletteFile::gpl);
}
void PalettePanel::exportAco() {
    model_.palettes().exportPalette(Palettes::PaletteFile::aco);
}

} // namespace qirn
