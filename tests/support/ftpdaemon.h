#pragma once

#include <QHostAddress>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace vantrel::test {

/// A file server of another make on a free port of the loopback interface, with a folder of its own and the
/// factory's password. ./test unpacks them beside the programs; they need root, as they give rights up.
class FtpDaemon
{
public:
    enum class Make { Pure, Pro, Vs };

    explicit FtpDaemon(Make make, const QHostAddress& address = QHostAddress::LocalHost);
    ~FtpDaemon();

    /// False where it was not unpacked or cannot run: skip the test then.
    bool isAvailable() const;
    /// Starts and waits until it answers.
    bool start();
    /// Makes a folder in which the server's user may write.
    static bool makeFolder(const QString& path);

    /// What the server shows as "/"; vsftpd lets nobody write there, only in a folder below.
    QString folder() const { return path(QStringLiteral("media")); }
    quint16 port() const { return m_port; }
    QHostAddress address() const { return m_address; }
    QString user() const;

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString program() const;
    bool save(const QString& name, const QByteArray& text) const;
    bool makeUser() const;
    bool makePureUsers() const;
    QStringList configure() const;
    QByteArray proConfiguration() const;
    QByteArray vsConfiguration() const;
    bool isAnswering() const;

    Make m_make;
    QHostAddress m_address;
    QTemporaryDir m_folder;
    QProcess m_process;
    quint16 m_port = 0;
};

} // namespace vantrel::test
