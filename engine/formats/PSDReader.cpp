#include "formats/PSDFile.h"

namespace qirn {

PSDFile::PSDError PSDFile::PSDError::unsupported(const QString& feature) {
    return PSDError(
        QStringLiteral("This Photoshop file uses a feature Qirn Paint can't read (%1).").arg(feature));
}

PSDFile::PSDError PSDFile::PSDError::noMergedPicture() {
    return PSDError(QStringLiteral("This Photoshop file was saved without a flattened picture, and its "
                                   "layers use a feature Qirn Paint can't "
                                   "read. Save it again with \"Maximize compatibility\" on."));
}

} // namespace qirn
