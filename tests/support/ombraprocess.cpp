#include "tests/support/ombraprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTcpServer>

#include <csignal>

namespace vantrel::test {

namespace {

constexpr int lowestPort = 15000; // below it are those of services, ours among them

/// A port that is free at that address. Each process looks from a place of its own on.
quint16 portOfOurs(const QString& host)
{
    const int count = OmbraProcess::firstPortOfTheKernel() - lowestPort;
    static qint64 next =
        QCoreApplication::applicationPid() * 409; // so far apart are those of one after the other
    for (int tries = 0; tries < count; ++tries) {
        const auto port = quint16(lowestPort + next++ % count);
        if (QTcpServer().listen(QHostAddress(host), port))
            return port;
    }
    return 0; // any, after all
}

} // namespace

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

int OmbraProcess::firstPortOfTheKernel()
{
    QFile range(QStringLiteral("/proc/sys/net/ipv4/ip_local_port_range"));
    const int first =
        range.open(QIODevice::ReadOnly) ? range.readAll().simplified().split(' ').value(0).toInt() : 0;
    return first > lowestPort + 1000 ? first : 32768;
}

bool OmbraProcess::start(int timeout)
{
    for (int tries = m_ports.http == 0 ? 3 : 1; tries > 0; --tries) { // somebody else may be as quick
        const ServerPorts before = m_ports;
        for (quint16* port : {&m_ports.http, &m_ports.link, &m_ports.preview, &m_ports.ftp}) {
            if (*port == 0)
                *port = portOfOurs(m_host);
        }
        if (startOnce(timeout))
            return true;
        m_ports = before;
        if (!m_output.contains("cannot listen"))
            break;
    }
    return false;
}

bool OmbraProcess::startOnce(int timeout)
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

QByteArray OmbraProcess::lastWords()
{
    return output().right(2000);
}

} // namespace vantrel::test
