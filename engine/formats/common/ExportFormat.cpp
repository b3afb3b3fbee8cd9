#include "formats/common/ExportFormat.h"

#include <QCoreApplication>

namespace qirn {

QString displayName(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).displayName);
}

} // namespace qirn
