#include "formats/PSDFile.h"

namespace qirn {

PSDFile::PSDError PSDFile::PSDError::unsupported(const QString& feature) {
    return PSDError(
        QStringLiteral("This Photoshop file uses a feature Qirn Paint can't read (%1).").arg(feature));
}

} // namespace qirn
