#include "support/Stops.h"

#include <csignal>

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>
#include <unistd.h>

namespace qirn::test {

namespace {

constexpr char kAnswers[] = "QIRN_EARLIER_ANSWERS"; // to the calls before the one that a child is started for
constexpr int kStopped = 86;                        // what a child ends with that an invariant stopped

[[noreturn]] void perform(const std::function<void()>& action) {
    std::signal(SIGABRT, [](int) { _exit(kStopped); });
    action();
    _exit(0);
}

bool stopsAnother(const QByteArray& answers) {
    QString function = QString::fromLatin1(QTest::currentTestFunction());
    if (const char* tag = QTest::currentDataTag()) function += u':' + QString::fromUtf8(tag);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kAnswers), QString::fromLatin1(answers + '.'));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(QTest::testObject()->metaObject()->className()), function,
                 QStringLiteral("-nocrashhandler")});
    return child.waitForFinished() && child.exitStatus() == QProcess::NormalExit &&
           child.exitCode() == kStopped;
}

} // namespace

bool stopsTheProcess(const std::function<void()>& action) {
    static QByteArray answers, place;
    const QByteArray here =
        QByteArray(QTest::currentTestFunction()) + ':' + QByteArray(QTest::currentDataTag());
    if (place != here) answers.clear();
    place = here;
    const QByteArray given = qgetenv(kAnswers);
    const qsizetype call = answers.size();
    if (!given.isEmpty() && given[call] == '.') perform(action);
    const bool stops = given.isEmpty() ? stopsAnother(answers) : given[call] == 'y';
    answers += stops ? 'y' : 'n';
    return stops;
}

} // namespace qirn::test
