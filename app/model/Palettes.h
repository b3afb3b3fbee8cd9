#pragma once
#include "app/files/UserPalettes.h"
#include "core/PaintColor.h"
#include "formats/palettes/Palette.h"

#include <cstddef>
#include <vector>

#include <QCoreApplication>
#include <QString>
#include <QUuid>

namespace qirn {

class PaintModel;
class Store;

/// The built-in palettes, which never change, and the user's own. An edit of a built-in palette copies it first; the copy
/// becomes current.
class Palettes {
    Q_DECLARE_TR_FUNCTIONS(qirn::Palettes)
public:
    explicit Palettes(PaintModel& model); ///< Borrowed for its life.

    std::vector<Palette> allPalettes() const; ///< Built-in, then the user's.
    const std::vector<Palette>& userPalettes() const { return *userPalettes_; }
    const Palette& currentPalette() const; ///< The first built-in one where the chosen one is gone.
    void selectPalette(const QUuid& id);

    enum class FromRecent { no, yes };
    void newPalette(const QString& name,
                    FromRecent fromRecent); ///< Of the paint color, or of the recent ones.
    std::size_t
    editablePaletteIndex(); ///< Index among the user's own; copies the current palette where it is built in.
    void addToPalette(const PaintColor& color);
    void removeFromPalette(std::size_t index);
    void moveInPalette(std::size_t from, std::size_t to); ///< The color at `from` stands at `to` afterwards.
    void renamePalette(const QString& name);
    void deletePalette(); ///< Asks first.

    void importPalette();
    enum class PaletteFile { gpl, aco };
    void exportPalette(PaletteFile file);

    void load(const Store& store); ///< Which one is current, and the file of the user's own.
    void save(Store& store)
        const; ///< Which one is current. The user's own are written to their file at each change,
    void flush() { userPalettes_.flush(); } ///< in the background; this waits for it.

private:
    std::size_t addOwnPalette(Palette palette); ///< Made the current one; its index among the user's own.
    Palette& editablePalette();                 ///< That of `editablePaletteIndex`.
    void savePalettes();

    PaintModel& model_;
    UserPaletteFile userPalettes_;
    QUuid paletteID_; // of the current palette
};

} // namespace qirn
