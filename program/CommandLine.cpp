#include "program/CommandLine.h"

#include "core/PaintEngine.h"
#include "platform/files/FilePath.h"

#include <algorithm>

#include <QCoreApplication>

namespace qirn {

namespace {

struct OptionRow {
    CommandLine::Mode mode;
    const char* option;
    const char* operand; ///< What has to follow; empty for nothing.
    const char* what;
};

constexpr OptionRow kOptions[] = {
    {CommandLine::Mode::selfTest, "--selftest", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Run the built-in checks; exits with 1 if one fails.")},
    {CommandLine::Mode::benchmark, "--benchmark", "",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Time strokes, fills and files.")},
    {CommandLine::Mode::makeSample, "--make-sample", "FILE",
     QT_TRANSLATE_NOOP("qirn::CommandLine", "Write a demonstration document, and a PNG of it beside it.")},
    {CommandLine::Mode::help, "--help", "", QT_TRANSLATE_NOOP("qirn::CommandLine", "Print this text.")},
    {CommandLine::Mode::version, "--version", "",
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
    const auto end = std::find(arguments.begin() + std::min<qsizetype>(1, arguments.size()), arguments.end(),
                               QStringLiteral("--"));
    const auto options = QStringList(arguments.begin(), end);
    for (const OptionRow& row : kOptions) {
        const qsizetype at = options.indexOf(QLatin1String(row.option), 1);
        if (at < 0 || line.mode != Mode::none) continue;
        if (row.mode == Mode::makeSample) line.samplePath = options.value(at + 1);
        if (row.mode != Mode::makeSample || !line.samplePath.isEmpty()) line.mode = row.mode;
    }
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (i == options.size()) continue; // the "--" itself
        if (i > options.size() || !arguments[i].startsWith(u'-')) line.files << pathOf(arguments[i]);
    }
    return line;
}

QString CommandLine::help() {
    QString text = tr("Usage: QirnPaint [OPTION] [FILE]...\n\n"
                      "Opens the files, paths or file:// addresses, in the studio. What follows \"--\" is a "
                      "file even if it\n"
                      "begins with \"-\".\n\nThese open no window:\n");
    for (const OptionRow& row : kOptions) {
        const QString call =
            QStringLiteral("%1 %2").arg(QLatin1String(row.option), QLatin1String(row.operand));
        text += QStringLiteral("  %1%2\n").arg(call, -20).arg(tr(row.what));
    }
    return text;
}

QString CommandLine::version() {
    return QStringLiteral("Qirn Paint %1").arg(QLatin1String(PaintEngine::version));
}

} // namespace qirn
