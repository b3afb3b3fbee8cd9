#include "program/arguments/CommandLine.h"

#include "core/PaintEngine.h"
#include "platform/files/FilePath.h"
#include "program/arguments/Manual.h"
#include "program/exporting/ExportOrder.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>

namespace qirn {

namespace {

using Mode = CommandLine::Mode;

struct OptionRow {
    Mode mode;
    const char* option;
    const char* operand; ///< What has to follow; empty for nothing.
    const char* what;
};

constexpr OptionRow kOptions[] = {
    // in the order in which they are looked for
    {Mode::selfTest, "--selftest", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Run the built-in checks; exits with 1 if one fails.")},
    {Mode::benchmark, "--benchmark", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Time strokes, fills and files.")},
    {Mode::makeSample, "--make-sample", "FILE",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Write a demonstration document, and a PNG of it beside it.")},
    {Mode::newCanvas, "--new-canvas", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Ask for the size of a new canvas.")},
    {Mode::recover, "--recover", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine",
                       "List the safety copies that a crash, power cut or forced quit left behind.")},
    {Mode::exportPictures, "--export", "FORMAT",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Write pictures in another format, as it is told below.")},
    {Mode::help, "--help", "", QT_TRANSLATE_NOOP("qirn::CommandLine", "Print this text.")},
    {Mode::version, "--version", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Print the name and version of the program.")},
};

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::CommandLine", text);
}

QString pathOf(const QString& argument) {
    return absolutePath(pathOfAddress(QUrl(argument)).value_or(argument));
}

} // namespace

CommandLine CommandLine::parsed(const QStringList& arguments) {
    CommandLine line;
    line.words = arguments;
    const auto end = std::find(arguments.begin() + std::min<qsizetype>(1, arguments.size()), arguments.end(),
                               QStringLiteral("--"));
    const auto options = QStringList(arguments.begin(), end);
    if (options.isEmpty()) return line;
    for (const OptionRow& row : kOptions) {
        const auto at = std::find_if(options.begin() + 1, options.end(), [&](const QString& word) {
            return word.section(u'=', 0, 0) == QLatin1String(row.option);
        });
        if (at == options.end() || line.mode != Mode::none) continue;
        if (row.mode == Mode::makeSample)
            line.samplePath =
                at->contains(u'=') ? at->section(u'=', 1) : options.value(at - options.begin() + 1);
        if (row.mode != Mode::makeSample || !line.samplePath.isEmpty()) line.mode = row.mode;
    }
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (i == options.size()) continue; // the "--" itself
        if (i > options.size() || !arguments[i].startsWith(u'-')) line.files << pathOf(arguments[i]);
    }
    return line;
}

std::optional<PaintSheet::Kind> CommandLine::sheet() const {
    if (mode == Mode::newCanvas) return PaintSheet::Kind::newDocument;
    if (mode == Mode::recover) return PaintSheet::Kind::recovery;
    return std::nullopt;
}

const char* CommandLine::optionOf(PaintSheet::Kind sheet) {
    CommandLine line;
    for (const OptionRow& row : kOptions) {
        line.mode = row.mode;
        if (line.sheet() == sheet) return row.option;
    }
    return "";
}

Manual Manual::ofProgram() {
    const auto rows = [](bool inStudio) {
        std::vector<Row> those;
        for (const OptionRow& row : kOptions)
            if (CommandLine{row.mode, {}, {}, {}}.opensStudio() == inStudio)
                those.push_back({QStringLiteral("%1 %2")
                                     .arg(QLatin1String(row.option), QLatin1String(row.operand))
                                     .trimmed(),
                                 tr(row.what)});
        return those;
    };
    Manual manual{
        tr("paint and draw on layered pictures of any size"),
        {QStringLiteral("QirnPaint [OPTION] [FILE]..."),
         QStringLiteral("QirnPaint --export FORMAT [OPTION]... FILE OUT"),
         QStringLiteral("QirnPaint --export FORMAT [OPTION]... FILE... FOLDER")},
        {{tr("Description"),
          {tr("Qirn Paint is a painting studio for pressure-sensitive pens, on layered pictures of any "
              "size."),
           tr("Opens the files, paths or file:// addresses, in the studio: in the one that is open "
              "already, if there is one. What follows \"--\" is a file even if it begins with \"-\".")},
          {}},
         {tr("In the studio, once the files are open"), {}, rows(true)},
         {tr("Without a window"), {}, rows(false)}}};
    for (Section& section : ExportOrder::manual()) manual.sections.push_back(std::move(section));
    manual.sections.push_back(
        {tr("Exit status"),
         {},
         {{QStringLiteral("0"), tr("All that was asked for is done.")},
          {QStringLiteral("1"),
           tr("A check failed, a file could not be written, or there is no display to open the studio on.")},
          {QStringLiteral("2"), tr("--export was called in another way than above; nothing was written.")}}});
    return manual;
}

QString CommandLine::help() {
    return Manual::ofProgram().plainText();
}

QString CommandLine::version() {
    return QStringLiteral("Qirn Paint %1").arg(QLatin1String(PaintEngine::version));
}

} // namespace qirn
