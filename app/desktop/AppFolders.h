#pragma once
#include <QString>

namespace qirn {

/// Where the application keeps its own files: in folders for the user alone, whatever the mode of new files is.
namespace AppFolders {

/// Uses another folder instead of the user's, for tests and the self-test; empty: the user's again.
void setBaseOverride(const QString& folder);

/// "Qirn Paint" in the user's data folder; created where missing and closed to others, failures are ignored.
QString base();
QString autosave();       ///< The safety copies; created and closed likewise.
QString storeFile();      ///< The small values (Store.h).
QString olderStoreFile(); ///< Where versions before the first Store kept them: an INI file.
QString brushesFile();    ///< The user's presets.
QString palettesFile();

} // namespace AppFolders

} // namespace qirn
