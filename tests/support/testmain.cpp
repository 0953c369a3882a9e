#include "tests/support/testmain.h"

#include "tests/support/crashtrace.h"
#include "tests/support/offscreendesk.h"

#include <QApplication>
#include <QMutex>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <optional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vantrel::test {

namespace {

struct Entry
{
    const char* name;
    std::function<QObject*()> make;
};

std::vector<Entry>& entries()
{
    static std::vector<Entry> all;
    return all;
}

QMutex mutex;
QStringList expected;
QStringList allowed;
QStringList unexpected;
QtMessageHandler previous = nullptr;

bool isAnnounced(const QString& message)
{
    for (qsizetype i = 0; i < expected.size(); ++i) {
        if (message.contains(expected[i])) {
            expected.removeAt(i);
            return true;
        }
    }
    return std::any_of(allowed.cbegin(), allowed.cend(),
                       [&](const QString& part) { return message.contains(part); });
}

void watchMessages(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    // No faults of ours: the offscreen platform says the one of each window, Qt the other where its thread
    // tells a reply twice that the server has gone, with nothing of ours on the stack.
    const bool fromQt =
        message.startsWith(QLatin1String("This plugin does not support ")) ||
        message.startsWith(QLatin1String("QNetworkReplyImplPrivate::error: Internal problem"));
    if ((type == QtWarningMsg || type == QtCriticalMsg) && !fromQt) {
        const QMutexLocker lock(&mutex);
        if (!isAnnounced(message))
            unexpected.append(message);
    }
    if (previous)
        previous(type, context, message);
}

/// What is wrong with the log after a test class; empty when it holds just what was announced. Starts anew.
QString takeVerdict()
{
    const QMutexLocker lock(&mutex);
    QString text;
    for (const QString& message : std::as_const(unexpected))
        text += QStringLiteral("unexpected warning: ") + message + u'\n';
    for (const QString& part : std::as_const(expected))
        text += QStringLiteral("announced warning never came: ") + part + u'\n';
    unexpected.clear();
    expected.clear();
    allowed.clear();
    return text;
}

} // namespace

Registration::Registration(const char* name, std::function<QObject*()> make)
{
    entries().push_back({name, std::move(make)});
}

void expectWarning(const QString& part)
{
    const QMutexLocker lock(&mutex);
    expected.append(part);
}

void allowWarnings(const QString& part)
{
    const QMutexLocker lock(&mutex);
    allowed.append(part);
}

namespace {

/// 0 when it passed.
int runClass(const Entry& entry, int argc, char** argv)
{
    const QTemporaryDir desk;
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qputenv("QT_QPA_PLATFORM", offscreenDesk(desk.path()).toLocal8Bit());
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("HalcyraTest"));
    QCoreApplication::setApplicationName(QStringLiteral("test-%1").arg(QCoreApplication::applicationPid()));

    // A crash must end the test: the crash handler's debugger may hang on a stopped process for minutes.
    char noCrashHandler[] = "-nocrashhandler";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.push_back(noCrashHandler);
    std::unique_ptr<QObject> test(entry.make());
    // The test run installs a handler of its own that hands nothing on, so ours goes in front of that one.
    QTest::qInit(test.get(), static_cast<int>(arguments.size()), arguments.data());
    previous = qInstallMessageHandler(watchMessages);
    int failures = QTest::qRun();
    test.reset(); // what its members say as they go counts as well
    qInstallMessageHandler(previous);
    QTest::qCleanup();
    if (const QString verdict = takeVerdict(); !verdict.isEmpty()) {
        ++failures;
        fprintf(stderr, "FAIL!  : %s left in the log:\n%s", entry.name, qPrintable(verdict));
    }
    return failures == 0 ? 0 : 1;
}

/// In a process of its own: a class that is skipped as a whole would leave those behind it without a test,
/// and one that crashes would take them along. Tells how it ended; nothing in that process itself.
std::optional<int> runApart(const Entry& entry)
{
    fflush(nullptr);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(1);
        return {};
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return 1;
    if (!WIFEXITED(status))
        fprintf(stderr, "FAIL!  : %s was ended by signal %d\n", entry.name, WTERMSIG(status));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1;
}

} // namespace

} // namespace vantrel::test

int main(int argc, char** argv)
{
    using namespace vantrel::test;
#ifndef HALCYRA_SANITIZED // a sanitizer tells more
    traceCrashes();
#endif
    QStandardPaths::setTestModeEnabled(true);
    std::vector<Entry> chosen = entries();
    const QByteArray only = qgetenv("HALCYRA_TEST_CLASS"); // empty: all
    if (!only.isEmpty())
        std::erase_if(chosen, [&only](const Entry& entry) { return only != entry.name; });
    if (chosen.empty())
        fprintf(stderr, "FAIL!  : there is no test class %s\n", only.constData());
    if (chosen.size() == 1)
        return runClass(chosen.front(), argc, argv);
    int failures = chosen.empty() ? 1 : 0;
    for (const Entry& entry : chosen) {
        const std::optional<int> outcome = runApart(entry);
        if (!outcome)
            return runClass(entry, argc, argv);
        failures += *outcome;
    }
    return failures == 0 ? 0 : 1;
}
