#include "tests/support/pureftpd.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>

#include <sys/stat.h>
#include <unistd.h>

namespace vantrel::test {

namespace {

constexpr unsigned nobody = 65534;

QString unpacked(const QString& program)
{
    return QDir(qEnvironmentVariable("HALCYRA_BIN")).filePath(QStringLiteral("../ftpd/") + program);
}

QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(5000) && process.exitCode() == 0
               ? process.readAllStandardOutput().trimmed()
               : QByteArray();
}

} // namespace

PureFtpd::~PureFtpd()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool PureFtpd::isAvailable()
{
    return ::geteuid() == 0 && QFileInfo(unpacked(QStringLiteral("usr/sbin/pure-ftpd"))).isExecutable();
}

bool PureFtpd::makeUser()
{
    // A hash of this kind is checked at once; its own tool makes one that takes seconds.
    const QByteArray hash =
        outputOf(QStringLiteral("openssl"),
                 {QStringLiteral("passwd"), QStringLiteral("-6"), QStringLiteral("tnempius")});
    QFile users(m_folder.filePath(QStringLiteral("users")));
    if (hash.isEmpty() || !users.open(QIODevice::WriteOnly))
        return false;
    const QByteArray number = QByteArray::number(nobody);
    users.write("opsadmin:" + hash + ':' + number + ':' + number + "::" + folder().toUtf8() +
                "/./::::::::::::\n");
    users.close();
    QProcess make;
    make.start(unpacked(QStringLiteral("usr/bin/pure-pw")),
               {QStringLiteral("mkdb"), m_folder.filePath(QStringLiteral("users.pdb")), QStringLiteral("-f"),
                users.fileName()});
    return make.waitForFinished(5000) && make.exitCode() == 0;
}

bool PureFtpd::isAnswering() const
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, m_port);
    return socket.waitForReadyRead(500);
}

bool PureFtpd::start()
{
    QDir(m_folder.path()).mkpath(QStringLiteral("media"));
    ::chmod(QFile::encodeName(m_folder.path()).constData(), 0755);
    if (::chown(QFile::encodeName(folder()).constData(), nobody, nobody) != 0 || !makeUser())
        return false;
    {
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        m_port = free.serverPort();
    }
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(unpacked(QStringLiteral("usr/sbin/pure-ftpd")),
                    {QStringLiteral("-S"), QStringLiteral("127.0.0.1,%1").arg(m_port), QStringLiteral("-l"),
                     QStringLiteral("puredb:") + m_folder.filePath(QStringLiteral("users.pdb")),
                     QStringLiteral("-E"), QStringLiteral("-A"), QStringLiteral("-H"), QStringLiteral("-u"),
                     QStringLiteral("1"), QStringLiteral("-g"), m_folder.filePath(QStringLiteral("pid"))});
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 10000 && m_process.state() != QProcess::NotRunning) {
        if (isAnswering())
            return true;
    }
    return false;
}

} // namespace vantrel::test
