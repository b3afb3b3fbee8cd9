#include "program/exporting/ExportOrder.h"

#include "app/desktop/FileTypes.h"
#include "platform/files/FilePath.h"

#include <algorithm>

#include <QCoreApplication>
#include <QFileInfo>
#include <sys/stat.h>

namespace qirn {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::ExportOrder", text);
}

std::optional<ExportFormat> formatNamed(const QString& word) {
    const auto isIt = [&](const char* name) {
        return word.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    };
    for (const auto name : {&ExportFormatRow::id, &ExportFormatRow::fileExtension})
        for (const ExportFormatRow& row : kExportFormats)
            if (isIt(row.*name)) return row.format;
    return std::nullopt;
}

bool takeFormat(ExportOrder& order, const QString& word) {
    const auto format = formatNamed(word);
    if (format) order.format = *format;
    return format.has_value();
}

bool takeQuality(ExportOrder& order, const QString& word) {
    bool isNumber = false;
    order.quality = (word.endsWith(u'%') ? word.chopped(1) : word).toDouble(&isNumber) / 100;
    return isNumber && order.quality >= kLeastQuality && order.quality <= 1;
}

bool takeBackground(ExportOrder& order, const QString& word) {
    std::optional<PaintColor> color = PaintColor::fromHex(word);
    if (word == QStringLiteral("white")) color = PaintColor::white();
    if (word == QStringLiteral("black")) color = PaintColor::black();
    order.background = color.value_or(order.background);
    return color.has_value();
}

struct OptionRow {
    const char* option;
    const char* operand;
    bool (*take)(ExportOrder& order, const QString& word); ///< False where the word is none for it.
    const char* what;
};
constexpr OptionRow kOptions[] = {
    {"--export", "FORMAT", takeFormat, ""},
    {"--quality", "PERCENT", takeQuality,
     QT_TRANSLATE_NOOP("qirn::ExportOrder",
                       "Of formats that lose something for the sake of size: %1 to 100, and %2 by itself.")},
    {"--background", "COLOR", takeBackground,
     QT_TRANSLATE_NOOP("qirn::ExportOrder",
                       "Under what is see-through, in formats without transparency: white, which it is by "
                       "itself, black, or a color as #RRGGBB.")},
};

bool isFolder(const QString& path) {
    struct stat facts {};
    return ::stat(bytesOfPath(path).constData(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

} // namespace

ExportOrder ExportOrder::parsed(const QStringList& arguments) {
    ExportOrder order;
    bool areOptions = true;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        if (!areOptions || !word.startsWith(u'-')) {
            order.pictures << pathOfAddress(QUrl(word)).value_or(word);
            continue;
        }
        if (word == QStringLiteral("--")) {
            areOptions = false;
            continue;
        }
        const qsizetype equals = word.indexOf(u'=');
        const QString option = word.left(equals);
        const auto* const row = std::ranges::find_if(
            kOptions, [&](const OptionRow& each) { return option == QLatin1String(each.option); });
        if (row == std::end(kOptions)) throw WrongUse(tr("--export knows no option %1.").arg(word));
        const QString operand = equals >= 0 ? word.mid(equals + 1) : arguments.value(++i);
        if (!row->take(order, operand))
            throw WrongUse(tr("\"%1\" is no %2 for %3.").arg(operand, QLatin1String(row->operand), option));
    }
    if (order.pictures.size() < 2)
        throw WrongUse(tr("--export needs a picture, and behind it the place where it goes."));
    order.target = order.pictures.takeLast();
    if (order.pictures.size() > 1 && !isFolder(order.target))
        throw WrongUse(tr("%1 is no folder, which several pictures need.").arg(order.target));
    return order;
}

QString ExportOrder::placeOf(const QString& picture) const {
    if (!isFolder(target)) return target;
    const QFileInfo info(picture);
    const QString name = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    return (target.endsWith(u'/') ? target : target + u'/') +
           FileTypes::fileName(name, QLatin1String(rowOf(format).fileExtension));
}

std::vector<Manual::Section> ExportOrder::manual() {
    Manual::Section options{
        tr("Export"),
        {tr("Each FILE is written as FORMAT: to OUT, or into FOLDER under its own name with the format's "
            "extension. What is there is replaced in one step by the finished file. A FILE is never "
            "replaced, "
            "under whichever name, and what was just written neither. What fails is told on standard error, "
            "and the others are written all the same.")},
        {}};
    for (const OptionRow& row : kOptions) {
        if (!*row.what) continue;
        QString what = tr(row.what);
        if (row.take == takeQuality) what = what.arg(kLeastQuality * 100).arg(kUsualQuality * 100);
        options.rows.push_back(
            {QStringLiteral("%1 %2").arg(QLatin1String(row.option), QLatin1String(row.operand)), what});
    }
    Manual::Section formats{
        tr("Formats"),
        {tr("FORMAT is one of these, or an extension, which stands for the first that has it.")},
        {}};
    for (const ExportFormatRow& row : kExportFormats)
        formats.rows.push_back({QLatin1String(row.id), displayName(row.format)});
    return {options, formats};
}

} // namespace qirn
