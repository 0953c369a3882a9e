#include "tests/support/ombraprocess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>

#include <csignal>

namespace vantrel::test {

OmbraProcess::OmbraProcess()
    : m_mediaFolder(m_folder.filePath(QStringLiteral("media")))
{
    QDir(m_folder.path()).mkpath(QStringLiteral("media"));
    QDir(m_folder.path()).mkpath(QStringLiteral("state"));
}

OmbraProcess::~OmbraProcess()
{
    stop();
}

QString OmbraProcess::binary(const QString& name)
{
    const QString folder = qEnvironmentVariable("HALCYRA_BIN");
    return folder.isEmpty() ? QString() : QDir(folder).filePath(name);
}

bool OmbraProcess::isAvailable()
{
    return QFileInfo(binary(QStringLiteral("ombra"))).isExecutable();
}

QString OmbraProcess::stateFolder() const
{
    return m_folder.filePath(QStringLiteral("state"));
}

bool OmbraProcess::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

bool OmbraProcess::start(int timeout)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->start(binary(QStringLiteral("ombra")),
                     QStringList{QStringLiteral("--media"), m_mediaFolder, QStringLiteral("--state"),
                                 stateFolder(), QStringLiteral("--bind"), host(),
                                 QStringLiteral("--no-discovery"), QStringLiteral("--http-port"),
                                 QString::number(m_ports.http), QStringLiteral("--link-port"),
                                 QString::number(m_ports.link), QStringLiteral("--preview-port"),
                                 QString::number(m_ports.preview), QStringLiteral("--ftp-port"),
                                 QString::number(m_ports.ftp)} +
                         m_options);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < timeout) {
        while (m_process->canReadLine()) {
            const QByteArray line = m_process->readLine();
            m_output += line;
            if (readPorts(line))
                return true;
        }
        if (!m_process->waitForReadyRead(int(timeout - clock.elapsed())))
            break;
    }
    m_output += m_process->readAll();
    qInfo("ombra did not get ready: %s", m_output.constData());
    kill();
    return false;
}

bool OmbraProcess::readPorts(const QByteArray& line)
{
    if (!line.contains("ombra ready"))
        return false;
    const auto port = [&](const char* name) {
        const QRegularExpression pattern(QStringLiteral("\\b%1=(?:\\S*:)?(\\d+)").arg(QLatin1String(name)));
        return quint16(pattern.match(QString::fromUtf8(line)).captured(1).toUInt());
    };
    m_ports.http = port("http");
    m_ports.link = port("link");
    m_ports.preview = port("preview");
    m_ports.ftp = port("ftp");
    return m_ports.http && m_ports.link && m_ports.preview;
}

void OmbraProcess::kill()
{
    if (!m_process)
        return;
    m_process->kill();
    m_process->waitForFinished();
    m_output += m_process->readAll();
    m_process.reset();
}

void OmbraProcess::hang()
{
    if (m_process)
        ::kill(pid_t(m_process->processId()), SIGSTOP);
}

void OmbraProcess::goOn()
{
    if (m_process)
        ::kill(pid_t(m_process->processId()), SIGCONT);
}

bool OmbraProcess::restart(int timeout)
{
    kill();
    return start(timeout);
}

void OmbraProcess::stop(int timeout)
{
    if (!m_process)
        return;
    m_process->terminate();
    if (m_process->waitForFinished(timeout)) {
        m_output += m_process->readAll();
        m_process.reset();
    } else {
        kill();
    }
}

QByteArray OmbraProcess::output()
{
    if (m_process)
        m_output += m_process->readAll();
    return m_output;
}

} // namespace vantrel::test
