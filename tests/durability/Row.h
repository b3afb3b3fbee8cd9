#pragma once
#include <cstdint>
#include <cstdio>
#include <optional>

#include <QCoreApplication>
#include <QProcess>
#include <QString>
#include <QStringList>

/// What the rows of the durability harness share. A row is a test class that does one thing many times: `times(100,
/// 10'000)` is 100 in `./test` and 10,000 in tools/durability, which prints what the row tells at its end.
namespace qirn::test {

/// What was said behind "--" to this class, as "long", "times=500" or "seed=7"; empty where it was not.
inline QString said(const QString& word) {
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype start = arguments.indexOf(QStringLiteral("--"));
    for (qsizetype i = start < 0 ? arguments.size() : start + 1; i < arguments.size(); ++i) {
        if (arguments[i] == word) return word;
        if (arguments[i].startsWith(word + u'=')) return arguments[i].mid(word.size() + 1);
    }
    return {};
}

inline bool isLongForm() {
    return !said(QStringLiteral("long")).isEmpty();
}

/// How often the row does its thing.
inline int64_t times(int64_t shortForm, int64_t longForm) {
    const QString wanted = said(QStringLiteral("times"));
    return !wanted.isEmpty() ? wanted.toLongLong() : isLongForm() ? longForm : shortForm;
}

/// What a row that chooses by chance begins with. The same seed makes the same choices.
inline uint64_t firstSeed() {
    return said(QStringLiteral("seed")).toULongLong();
}

/// The row's line in the table: what was done and how often, what came of it, and what its bounds leave out. Told last,
/// and only where everything held; a row that fails tells it as a test does.
inline void tellRow(const QString& what, int64_t count, const QString& outcome,
                    const QString& leftOut = QStringLiteral("nothing")) {
    const QString line = QStringLiteral("| %1 | %L2 | %3 | %4 |").arg(what).arg(count).arg(outcome, leftOut);
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

/// Starts this program as the helper of that name (see TestMain.h). Its temporary and run-time files are in `folder`,
/// where a killed one leaves them; what it says on standard error comes through.
inline void startHelper(QProcess& process, const QString& name, const QStringList& arguments,
                        const QString& folder) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), folder);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  QStringList{QStringLiteral("--helper"), name} + arguments);
}

/// The next whole line that a helper says, without its end; nothing where none comes in time, or it has ended.
inline std::optional<QByteArray> nextLine(QProcess& process, int milliseconds = 60'000) {
    while (!process.canReadLine())
        if (!process.waitForReadyRead(milliseconds)) return std::nullopt;
    return process.readLine().trimmed();
}

} // namespace qirn::test
