#include "app/desktop/Failures.h"

#include "app/desktop/HostWords.h"
#include "formats/common/FormatErrors.h"
#include "platform/DescribedError.h"

#include <new>

#include <QCoreApplication>

namespace qirn {

QString failureText(const std::exception& error) {
    // Its words are the program's own: hostWords may put the host's in.
    if (const auto* picture = dynamic_cast<const ExportError*>(&error))
        return hostWords(picture->description());
    if (const auto* described = dynamic_cast<const DescribedError*>(&error)) return described->description();
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return QCoreApplication::translate("Guarded",
                                           "There is not enough memory for this. Nothing was changed.");
    qWarning("Qirn Paint: %s", error.what());
    return QCoreApplication::translate("Guarded", "This did not work. Nothing was changed.");
}

} // namespace qirn
