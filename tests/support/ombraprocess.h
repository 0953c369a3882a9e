#pragma once

#include "common/session/settings/serverports.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace vantrel::test {

/// A live server for tests, on ports of the loopback interface that are free, and stay so while it is killed
/// and started again, with a media folder and a state folder of its own. Needs the environment variable
/// HALCYRA_BIN to name the folder that holds the binary.
class OmbraProcess
{
public:
    OmbraProcess();
    ~OmbraProcess();

    /// False where HALCYRA_BIN names no folder with the server in it: skip the test then.
    static bool isAvailable();
    /// The path of a built program.
    static QString binary(const QString& name);

    /// Starts and waits for the line that says that it serves. After the first time it takes the same ports
    /// again, which are none that the kernel gives away by itself.
    bool start(int timeout = 15000);
    /// Ends it as a power failure would; the folders stay.
    void kill();
    /// kill() and start() on the same ports.
    bool restart(int timeout = 15000);
    /// Asks it to end; kills it after the time-out (milliseconds).
    void stop(int timeout = 5000);
    bool isRunning() const;
    qint64 processId() const { return m_process ? m_process->processId() : 0; }
    /// It hangs: its sockets stand, and it says and does nothing, until it goes on.
    void hang();
    void goOn();

    /// Before start(): serve this folder, which stays the caller's, in place of an own one.
    void setMediaFolder(const QString& folder) { m_mediaFolder = folder; }
    /// Before start(): further options of the command line.
    void setOptions(const QStringList& options) { m_options = options; }
    QString mediaFolder() const { return m_mediaFolder; }
    QString stateFolder() const;
    /// Of the interfaces that it told.
    ServerPorts ports() const { return m_ports; }
    QString host() const { return m_host; }
    /// Before start(): the one address that it serves at, in place of 127.0.0.1.
    void setHost(const QString& address) { m_host = address; }
    /// What it wrote so far, for the message of a failed test.
    QByteArray output();
    /// The end of that, where there may be much.
    QByteArray lastWords();

    /// Below it no port is given to who asks for any: between a kill and the next start nobody else can end
    /// up on one of the server's.
    static int firstPortOfTheKernel();

private:
    bool startOnce(int timeout);
    bool readPorts(const QByteArray& line);

    QTemporaryDir m_folder;
    QString m_mediaFolder;
    QString m_host = QStringLiteral("127.0.0.1");
    QStringList m_options;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
    ServerPorts m_ports{0, 0, 0, 0, 0};
};

} // namespace vantrel::test
