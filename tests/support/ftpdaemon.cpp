#include "tests/support/ftpdaemon.h"

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

// The user "daemon", which every Debian has: vsftpd wants one whose home exists.
constexpr unsigned owner = 1;

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

FtpDaemon::FtpDaemon(Make make, const QHostAddress& address)
    : m_make(make)
    , m_address(address)
{
}

FtpDaemon::~FtpDaemon()
{
    m_process.kill();
    m_process.waitForFinished();
}

QString FtpDaemon::program() const
{
    return unpacked(m_make == Make::Pure  ? QStringLiteral("usr/sbin/pure-ftpd")
                    : m_make == Make::Pro ? QStringLiteral("usr/sbin/proftpd")
                                          : QStringLiteral("usr/sbin/vsftpd"));
}

bool FtpDaemon::isAvailable() const
{
    return ::geteuid() == 0 && QFileInfo(program()).isExecutable();
}

/// vsftpd has users of the system and guests; only a guest can do without an account.
QString FtpDaemon::user() const
{
    return m_make == Make::Vs ? QStringLiteral("anonymous") : QStringLiteral("opsadmin");
}

bool FtpDaemon::makeFolder(const QString& path)
{
    return QDir().mkpath(path) && ::chown(QFile::encodeName(path).constData(), owner, owner) == 0;
}

bool FtpDaemon::save(const QString& name, const QByteArray& text) const
{
    QFile file(path(name));
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() &&
           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

bool FtpDaemon::makeUser() const
{
    if (m_make == Make::Vs)
        return save(QStringLiteral("users"), "tnempius\n"); // of the guests, only who has this password
    // A hash of this kind is checked at once; pure-ftpd's own tool makes one that takes seconds.
    const QByteArray hash =
        outputOf(QStringLiteral("openssl"),
                 {QStringLiteral("passwd"), QStringLiteral("-6"), QStringLiteral("tnempius")});
    const QByteArray number = QByteArray::number(owner);
    const QByteArray line =
        "opsadmin:" + hash + ':' + number + ':' + number + "::" + QFile::encodeName(folder());
    if (hash.isEmpty())
        return false;
    if (m_make == Make::Pro)
        return save(QStringLiteral("users"), line + ":/bin/sh\n");
    return save(QStringLiteral("users"), line + "/./::::::::::::\n") && makePureUsers();
}

bool FtpDaemon::makePureUsers() const
{
    QProcess make;
    make.start(unpacked(QStringLiteral("usr/bin/pure-pw")),
               {QStringLiteral("mkdb"), path(QStringLiteral("users.pdb")), QStringLiteral("-f"),
                path(QStringLiteral("users"))});
    return make.waitForFinished(5000) && make.exitCode() == 0;
}

QByteArray FtpDaemon::proConfiguration() const
{
    return "ServerType standalone\nUseIPv6 on\nSocketBindTight on\nDefaultAddress " +
           m_address.toString().toLatin1() + "\nPort " + QByteArray::number(m_port) +
           "\nUser daemon\nGroup daemon\nAuthOrder mod_auth_file.c\nAuthUserFile " +
           QFile::encodeName(path(QStringLiteral("users"))) +
           "\nRequireValidShell off\nDefaultRoot ~\nAllowOverwrite on\nAllowStoreRestart on\n"
           "DelayEngine off\nUseReverseDNS off\nWtmpLog off\nTransferLog none\nSystemLog none\n"
           "ScoreboardFile none\nPidFile " +
           QFile::encodeName(path(QStringLiteral("pid"))) + '\n';
}

QByteArray FtpDaemon::vsConfiguration() const
{
    const bool isIpv6 = m_address.protocol() == QAbstractSocket::IPv6Protocol;
    return QByteArray(isIpv6 ? "listen=NO\nlisten_ipv6=YES\nlisten_address6="
                             : "listen=YES\nlisten_ipv6=NO\nlisten_address=") +
           m_address.toString().toLatin1() + "\nlisten_port=" + QByteArray::number(m_port) +
           "\nbackground=NO\nconnect_from_port_20=NO\nanonymous_enable=YES\nlocal_enable=NO\n"
           "write_enable=YES\nanon_upload_enable=YES\nanon_mkdir_write_enable=YES\n"
           "anon_other_write_enable=YES\nanon_world_readable_only=NO\nanon_umask=022\n"
           "ftp_username=daemon\nnopriv_user=nobody\ndelay_failed_login=0\nxferlog_enable=NO\n"
           "seccomp_sandbox=NO\nisolate=NO\nisolate_network=NO\nsecure_email_list_enable=YES\n"
           "email_password_file=" +
           QFile::encodeName(path(QStringLiteral("users"))) + "\nanon_root=" + QFile::encodeName(folder()) +
           "\nsecure_chroot_dir=" + QFile::encodeName(path(QStringLiteral("empty"))) + '\n';
}

/// Returns the arguments to start it with; none when it cannot be set up.
QStringList FtpDaemon::configure() const
{
    const QString settings = QStringLiteral("settings");
    switch (m_make) {
    case Make::Pure:
        return {QStringLiteral("-S"),       m_address.toString() + QLatin1Char(',') + QString::number(m_port),
                QStringLiteral("-l"),       QStringLiteral("puredb:") + path(QStringLiteral("users.pdb")),
                QStringLiteral("-E"),       QStringLiteral("-A"),
                QStringLiteral("-H"),       QStringLiteral("-u"),
                QStringLiteral("1"),        QStringLiteral("-g"),
                path(QStringLiteral("pid"))};
    case Make::Pro:
        if (!save(settings, proConfiguration()))
            return {};
        return {QStringLiteral("-n"), QStringLiteral("-q"), QStringLiteral("-c"), path(settings)};
    case Make::Vs:
        if (!QDir().mkpath(path(QStringLiteral("empty"))) || !save(settings, vsConfiguration()))
            return {};
        return {path(settings)};
    }
    return {};
}

bool FtpDaemon::isAnswering() const
{
    QTcpSocket socket;
    socket.connectToHost(m_address, m_port);
    return socket.waitForReadyRead(500);
}

bool FtpDaemon::start()
{
    ::chmod(QFile::encodeName(m_folder.path()).constData(), 0755);
    const bool isMade = m_make == Make::Vs ? QDir().mkpath(folder()) : makeFolder(folder());
    {
        QTcpServer free;
        free.listen(m_address);
        m_port = free.serverPort();
    }
    const QStringList arguments = isMade && m_port && makeUser() ? configure() : QStringList();
    if (arguments.isEmpty())
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), unpacked(QStringLiteral("libraries")));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program(), arguments);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 10000 && m_process.state() != QProcess::NotRunning) {
        if (isAnswering())
            return true;
    }
    return false;
}

} // namespace vantrel::test
