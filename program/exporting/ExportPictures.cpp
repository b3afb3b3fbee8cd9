#include "program/exporting/ExportPictures.h"

#include "app/desktop/Failures.h"
#include "app/model/PictureFiles.h"
#include "platform/files/FilePath.h"
#include "program/exporting/ExportConsole.h"
#include "program/exporting/ExportOrder.h"
#include "program/exporting/Interruption.h"

#include <optional>
#include <set>
#include <utility>

#include <QCoreApplication>
#include <QFileInfo>
#include <sys/stat.h>

namespace qirn {

namespace {

constexpr double kRead = 0.4; // of the work, about

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::ExportOrder", text);
}

/// What a file is, under whichever name.
using Identity = std::pair<dev_t, ino_t>;
std::optional<Identity> identityOf(const QString& path) {
    struct stat facts {};
    if (::stat(bytesOfPath(path).constData(), &facts) < 0) return std::nullopt;
    return Identity{facts.st_dev, facts.st_ino};
}

class Exporter {
public:
    Exporter(const ExportOrder& order, ExportConsole& console) : order_(order), console_(console) {
        for (const QString& picture : order.pictures)
            if (const auto identity = identityOf(picture)) read_.insert(*identity);
    }

    /// False where it could not be done, which has been told. Throws Cancelled.
    bool write(const QString& picture) {
        const QString place = order_.placeOf(picture);
        QString failing = PictureFiles::tr("Couldn't export") + u' ' + place; // what is about to be tried
        try {
            if (const QString reason = whyNotTo(place); !reason.isEmpty()) return fail(failing, reason);
            console_.begin(PictureFiles::tr("Exporting %1…").arg(QFileInfo(place).fileName()));
            const Progress progress(console_);
            const QString writing = std::exchange(failing, PictureFiles::tr("Couldn't open %1").arg(picture));
            const ReadPicture read = readPicture(picture, progress.part(0, kRead));
            failing = writing;
            writeExported(*read.document, place, order_.format, order_.quality, order_.background,
                          progress.part(kRead, 1));
            if (const QString remarks = wordsOf(read.remarks); !remarks.isEmpty())
                console_.say(PictureFiles::tr("%1: %2").arg(picture, remarks));
            tellOf(place, *read.document);
        } catch (const std::exception& error) {
            return fail(failing, failureText(error));
        }
        if (const auto identity = identityOf(place)) written_.insert(*identity);
        return true;
    }

private:
    QString whyNotTo(const QString& place) const {
        const auto identity = identityOf(place);
        if (identity && read_.contains(*identity)) return tr("It is one of the pictures that are exported.");
        if (identity && written_.contains(*identity)) return tr("It was written just now.");
        return {};
    }

    void tellOf(const QString& place, const PaintDocument& doc) const {
        const auto shownDifferently = rowOf(order_.format).shownDifferently;
        const QString what = shownDifferently ? shownDifferently(doc) : QString();
        if (!what.isEmpty())
            console_.say(
                PictureFiles::tr("Exported %1. Other programs may show differently: %2.").arg(place, what));
        else if (console_.isTerminal())
            console_.say(PictureFiles::tr("Exported %1").arg(place));
    }

    bool fail(const QString& what, const QString& reason) {
        console_.say(PictureFiles::tr("%1: %2").arg(what, reason));
        return false;
    }

    const ExportOrder& order_;
    ExportConsole& console_;
    std::set<Identity> read_, written_;
};

} // namespace

int exportPictures(const QStringList& arguments) {
    ExportConsole console;
    const Interruption interruption; // takes effect at the very end
    bool areAllWritten = true;
    try {
        const ExportOrder order = ExportOrder::parsed(arguments);
        Exporter exporter(order, console);
        for (const QString& picture : order.pictures)
            areAllWritten = exporter.write(picture) && areAllWritten;
    } catch (const ExportOrder::WrongUse& error) {
        console.say(error.description());
        console.say(tr("QirnPaint --help tells how it is called."));
        return 2;
    } catch (const Cancelled&) {
        console.end();
        areAllWritten = false;
    }
    return areAllWritten ? 0 : 1;
}

} // namespace qirn
