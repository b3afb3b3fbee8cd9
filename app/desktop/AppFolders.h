#pragma once
#include <QString>

namespace qirn {

/// Where the application keeps its own files.
namespace AppFolders {

/// Puts another folder in place of the user's, so that tests and the self-test keep away from real work; empty
/// ends that.
void setBaseOverride(const QString& folder);

QString base();      ///< "Qirn Paint" in the user's data folder; made where missing, a failure being ignored.
QString autosave();  ///< The safety copies; made likewise.
QString storeFile(); ///< The small values (Store.h).
QString olderStoreFile(); ///< Where versions before the first Store kept them: an INI file.
QString brushesFile();    ///< The user's presets.
QString palettesFile();

} // namespace AppFolders

} // namespace qirn
