#include "app/model/Palettes.h"

#include "app/desktop/AppFolders.h"
#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/Store.h"
#include "app/model/Colors.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

namespace qirn {

namespace {

const QString kPaletteKey = QStringLiteral("qirn.pt.palette");

} // namespace

Palettes::Palettes(PaintModel& model)
    : model_(model),
      userPalettes_(AppFolders::palettesFile()),
      paletteID_(PaletteLibrary::builtIn().front().id) {
    userPalettes_.onArrival = [this] { model_.announce(); };
}

void Palettes::load(const Store& store) {
    userPalettes_.load();
    const QUuid id(store.text(kPaletteKey).value_or(QString()));
    if (!id.isNull()) paletteID_ = id;
}

void Palettes::save(Store& store) const {
    store.keep(kPaletteKey, uuidText(paletteID_));
}

std::vector<Palette> Palettes::allPalettes() const {
    std::vector<Palette> all = PaletteLibrary::builtIn();
    all.insert(all.end(), userPalettes_->begin(), userPalettes_->end());
    return all;
}

const Palette& Palettes::currentPalette() const {
    for (const auto* list : {&PaletteLibrary::builtIn(), &*userPalettes_}) {
        const auto found = std::find_if(list->begin(), list->end(),
                                        [this](const Palette& palette) { return palette.id == paletteID_; });
        if (found != list->end()) return *found;
    }
    return PaletteLibrary::builtIn().front();
}

void Palettes::selectPalette(const QUuid& id) {
    if (id == paletteID_) return;
    paletteID_ = id;
    model_.saveState();
    model_.announce();
}

void Palettes::savePalettes() {
    userPalettes_.write();
    model_.announce();
}

std::size_t Palettes::addOwnPalette(Palette palette) {
    userPalettes_.edit().push_back(std::move(palette));
    selectPalette(userPalettes_->back().id);
    return userPalettes_->size() - 1;
}

// --- Editing

void Palettes::newPalette(const QString& name, FromRecent fromRecent) {
    Palette palette;
    palette.id = QUuid::createUuid();
    palette.name = name.isEmpty() ? tr("My Palette") : name;
    if (fromRecent == FromRecent::yes) {
        for (const PaintColor& color : model_.colors().recent()) palette.colors.push_back({color, {}});
    } else {
        palette.colors.push_back({model_.colors().primary(), {}});
    }
    addOwnPalette(std::move(palette));
    savePalettes();
}

std::size_t Palettes::editablePaletteIndex() {
    const auto found = std::find_if(userPalettes_->begin(), userPalettes_->end(),
                                    [this](const Palette& palette) { return palette.id == paletteID_; });
    if (found != userPalettes_->end()) return checkedSize(found - userPalettes_->begin());
    return addOwnPalette(ownCopyOf(currentPalette()));
}

Palette& Palettes::editablePalette() {
    const std::size_t index = editablePaletteIndex();
    return userPalettes_.edit()[index];
}

void Palettes::addToPalette(const PaintColor& color) {
    editablePalette().colors.push_back({color, {}});
    savePalettes();
}

void Palettes::removeFromPalette(std::size_t index) {
    if (index >= currentPalette().colors.size()) return; // before an edit copies a built-in palette
    auto& colors = editablePalette().colors;
    colors.erase(colors.begin() + static_cast<std::ptrdiff_t>(index));
    savePalettes();
}

void Palettes::moveInPalette(std::size_t from, std::size_t to) {
    const std::size_t count = currentPalette().colors.size();
    if (from >= count || to >= count || from == to) return;
    auto& colors = editablePalette().colors;
    PaletteColor color = std::move(colors[from]);
    colors.erase(colors.begin() + static_cast<std::ptrdiff_t>(from));
    colors.insert(colors.begin() + static_cast<std::ptrdiff_t>(to), std::move(color));
    savePalettes();
}

void Palettes::renamePalette(const QString& name) {
    if (name.isEmpty()) return;
    editablePalette().name = name;
    savePalettes();
}

void Palettes::deletePalette() {
    const Palette palette = currentPalette();
    const auto same = [&](const Palette& own) { return own.id == palette.id; };
    if (std::none_of(userPalettes_->begin(), userPalettes_->end(), same)) return;
    if (!model_.messages().confirm(
            tr("Delete the palette \"%1\"?").arg(palette.name),
            tr("Only this color palette is removed. Your pictures are not changed."))) {
        return;
    }
    std::erase_if(userPalettes_.edit(), same);
    savePalettes();
    selectPalette(PaletteLibrary::builtIn().front().id);
}

// --- Files

void Palettes::importPalette() {
    std::size_t colors = 0;
    QStringList names;
    for (const QString& path :
         model_.desktop().openFiles(tr("Import"), FileTypes::palettes(), Desktop::Several::yes)) {
        const QString file = QFileInfo(path).fileName();
        try {
            const QByteArray bytes = readFile(path);
            const Palette& palette =
                userPalettes()[addOwnPalette(PaletteLibrary::read(bytesOf(bytes), file))];
            colors += palette.colors.size();
            names << palette.name;
            savePalettes(); // after which others' may be in its place
            model_.desktop().noteUsedFile(path);
        } catch (const DescribedError& error) {
            model_.messages().alert(tr("Couldn't import %1").arg(file), error.description());
        }
    }
    if (!names.isEmpty())
        model_.messages().flash(tr("Imported %Ln colors from %1", nullptr, static_cast<int>(colors))
                                    .arg(names.join(QStringLiteral(", "))));
}

void Palettes::exportPalette(PaletteFile file) {
    const Palette palette = currentPalette();
    const FileType type = file == PaletteFile::aco ? FileTypes::aco() : FileTypes::gpl();
    const auto place = model_.desktop().saveFile(
        {tr("Export"), FileTypes::fileName(palette.name, type.extensions.front()), {type}});
    if (!place) return;
    try {
        writeAtomically(place->path,
                        bytesOf(file == PaletteFile::aco ? PaletteLibrary::aco(palette)
                                                         : PaletteLibrary::gpl(palette).toUtf8()));
    } catch (const DescribedError& error) {
        return model_.messages().alert(tr("Couldn't export the palette"), error.description());
    }
    model_.desktop().noteUsedFile(place->path);
    model_.messages().flash(tr("Exported %1").arg(QFileInfo(place->path).fileName()));
}

} // namespace qirn
