#include "tests/support/appprocess.h"

#include "tests/support/offscreendesk.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace vantrel::test {

AppProcess::~AppProcess()
{
    if (isRunning())
        stop();
}

QStringList AppProcess::connectTo(const ServerPorts& ports)
{
    const auto port = [](quint16 number) { return QString::number(number == 0 ? 1 : number); };
    return {QStringLiteral("--connect"),      QStringLiteral("127.0.0.1"),
            QStringLiteral("--http-port"),    port(ports.http),
            QStringLiteral("--link-port"),    port(ports.link),
            QStringLiteral("--preview-port"), port(ports.preview),
            QStringLiteral("--ftp-port"),     port(ports.ftp)};
}

bool AppProcess::start(const QStringList& arguments)
{
    m_arguments = arguments;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home.filePath(QStringLiteral("data")));
    if (qEnvironmentVariable("QT_QPA_PLATFORM") != QLatin1String("xcb"))
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), offscreenDesk(m_home.path()));
    m_process.setProcessEnvironment(environment);
    // Into a file: a pipe that nobody empties would hold the application up at its next line of log.
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardOutputFile(outputFile());

    const QString program = qEnvironmentVariable("HALCYRA_BIN") + QStringLiteral("/halcyra");
    m_process.start(program, QStringList{QStringLiteral("--ui-test"), QStringLiteral("--ui-test-port"),
                                         QStringLiteral("0")} +
                                 arguments);
    static const QRegularExpression ready(QStringLiteral("ui-test ready port=(\\d+)"));
    return QTest::qWaitFor(
        [this] {
            const QRegularExpressionMatch match = ready.match(output());
            m_port = match.hasMatch() ? quint16(match.captured(1).toUInt()) : quint16(0);
            return m_port != 0;
        },
        20000);
}

QString AppProcess::settingsFile() const
{
    return m_home.filePath(QStringLiteral("config/Halcyra/halcyra.ini"));
}

QString AppProcess::outputFile() const
{
    return m_home.filePath(QStringLiteral("output.txt"));
}

QString AppProcess::declarativeComplaint() const
{
    static const QRegularExpression complaint(QStringLiteral("qrc:/\\S+\\.qml:\\d+.*"));
    return complaint.match(output()).captured();
}

QString AppProcess::output() const
{
    QFile file(outputFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString AppProcess::endWithin(int milliseconds)
{
    if (isRunning() && !m_process.waitForFinished(milliseconds))
        return {};
    const bool isCrash = m_process.exitStatus() == QProcess::CrashExit;
    return QStringLiteral("it has %1 (%2)")
        .arg(isCrash ? QStringLiteral("crashed") : QStringLiteral("ended"))
        .arg(m_process.exitCode());
}

int AppProcess::stop()
{
    m_process.terminate();
    const bool hasEnded = m_process.waitForFinished(5000);
    if (!hasEnded) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
    // Nobody announces one, so it fails the test.
    if (const QString complaint = declarativeComplaint(); !complaint.isEmpty())
        qWarning("the application's log: %s", qPrintable(complaint));
    if (!hasEnded)
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int AppProcess::restart()
{
    const int code = stop();
    return start(QStringList(m_arguments)) ? code : -1;
}

} // namespace vantrel::test
