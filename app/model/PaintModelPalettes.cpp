// The palettes: built-in ones, which stay as they are, and the user's own, which are edited and exchanged.
#include "app/model/PaintModel.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/FileTypes.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/AtomicFile.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/ReadFile.h"

#include <algorithm>

#include <QFileInfo>

namespace qirn {

std::vector<Palette> PaintModel::allPalettes() const {
    std::vector<Palette> all = PaletteLibrary::builtIn();
    all.insert(all.end(), userPalettes_.begin(), userPalettes_.end());
    return all;
}

const Palette& PaintModel::currentPalette() const {
    for (const auto* list : {&PaletteLibrary::builtIn(), &userPalettes_}) {
        const auto found = std::find_if(list->begin(), list->end(),
                                        [this](const Palette& palette) { return palette.id == paletteID_; });
        if (found != list->end()) return *found;
    }
    return PaletteLibrary::builtIn().front();
}

void PaintModel::selectPalette(const QUuid& id) {
    if (id == paletteID_) return;
    paletteID_ = id;
    saveState();
    announce();
}

void PaintModel::savePalettes() {
    userPaletteFile_.save(userPalettes_);
    announce();
}

std::size_t PaintModel::addOwnPalette(Palette palette) {
    userPalettes_.push_back(std::move(palette));
    selectPalette(userPalettes_.back().id);
    return userPalettes_.size() - 1;
}

// --- Editing

void PaintModel::newPalette(const QString& name, FromRecent fromRecent) {
    Palette palette;
    palette.id = QUuid::createUuid();
    palette.name = name.isEmpty() ? tr("My Palette") : name;
    if (fromRecent == FromRecent::yes) {
        for (const PaintColor& color : recent_) palette.colors.push_back({color, {}});
    } else {
        palette.colors.push_back({primary_, {}});
    }
    addOwnPalette(std::move(palette));
    savePalettes();
}

std::size_t PaintModel::editablePaletteIndex() {
    const auto found = std::find_if(userPalettes_.begin(), userPalettes_.end(),
                                    [this](const Palette& palette) { return palette.id == paletteID_; });
    if (found != userPalettes_.end()) return checkedSize(found - userPalettes_.begin());
    return addOwnPalette(ownCopyOf(currentPalette()));
}

void PaintModel::addToPalette(const PaintColor& color) {
    userPalettes_[editablePaletteIndex()].colors.push_back({color, {}});
    savePalettes();
}

void PaintModel::removeFromPalette(std::size_t index) {
    if (index >= currentPalette().colors.size()) return; // before a copy is made for nothing
    auto& colors = userPalettes_[editablePaletteIndex()].colors;
    colors.erase(colors.begin() + static_cast<std::ptrdiff_t>(index));
    savePalettes();
}

void PaintModel::renamePalette(const QString& name) {
    if (name.isEmpty()) return;
    userPalettes_[editablePaletteIndex()].name = name;
    savePalettes();
}

void PaintModel::deletePalette() {
    const Palette palette = currentPalette();
    const auto same = [&](const Palette& own) { return own.id == palette.id; };
    if (std::none_of(userPalettes_.begin(), userPalettes_.end(), same)) return;
    if (!confirm(tr("Delete the palette \"%1\"?").arg(palette.name),
                 tr("Only this color palette is removed. Your pictures are not changed."))) {
        return;
    }
    std::erase_if(userPalettes_, same);
    savePalettes();
    selectPalette(PaletteLibrary::builtIn().front().id);
}

// --- Files

void PaintModel::importPalette() {
    for (const QString& path : desktop_.openFiles(FileTypes::palettes(), Desktop::Several::yes)) {
        const QString file = QFileInfo(path).fileName();
        try {
            const QByteArray bytes = readFile(path);
            const std::size_t index = addOwnPalette(PaletteLibrary::read(bytesOf(bytes), file));
            savePalettes();
            const Palette& palette = userPalettes_[index];
            flash(tr("Imported %1 colors from %2").arg(palette.colors.size()).arg(palette.name));
        } catch (const DescribedError& error) {
            alert(tr("Couldn't import %1").arg(file), error.description());
        }
    }
}

void PaintModel::exportPalette(PaletteFile file) {
    const Palette palette = currentPalette();
    const FileType type = file == PaletteFile::aco ? FileTypes::aco() : FileTypes::gpl();
    const auto path =
        desktop_.saveFile(FileTypes::fileName(palette.name, type.extensions.front()), {type}, {});
    if (!path) return;
    try {
        writeAtomically(*path, bytesOf(file == PaletteFile::aco ? PaletteLibrary::aco(palette)
                                                                : PaletteLibrary::gpl(palette).toUtf8()));
    } catch (const DescribedError& error) {
        return alert(tr("Couldn't export the palette"), error.description());
    }
    flash(tr("Exported %1").arg(QFileInfo(*path).fileName()));
}

} // namespace qirn
