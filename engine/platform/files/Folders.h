#pragma once
#include <QString>

namespace qirn {

/// Makes a folder with those above it where they are missing, each for its owner alone, and has them outlast a power cut.
/// False, and `errno`, where it is not there then.
bool makeFolders(const QString& path);

/// The same for a folder that the application keeps for itself; one that is there, is the user's and is open to others
/// is closed to them. A symbolic link, by which the user keeps it elsewhere, stays as it is and so does what it names.
bool makeOwnFolder(const QString& path);

} // namespace qirn
