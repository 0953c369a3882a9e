#pragma once

#include "common/session/settings/serverports.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace vantrel::test {

/// A halcyra of the test's own: settings in a folder of its own, UI test server on a free port.
class AppProcess
{
public:
    ~AppProcess();

    /// Starts the built application; false when it did not name the port of its UI test server within 20 s.
    bool start(const QStringList& arguments);
    /// The arguments that connect it to a server on this machine; a port of 0 stands for one where nobody
    /// listens.
    static QStringList connectTo(const ServerPorts& ports);
    quint16 uiTestPort() const { return m_port; }
    qint64 pid() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// How it has ended by itself, looking for so long; empty while it runs.
    QString endWithin(int milliseconds);
    /// Asks it to end and waits; its exit code, -1 after a crash or the limit. What declarative views
    /// complained of in its log fails the test.
    int stop();
    /// Ends it and starts it anew with the same arguments and settings; as stop(), or -1 when it did not
    /// start.
    int restart();
    /// All that it wrote since its last start, its log included.
    QString output() const;
    /// The first complaint of a declarative view in it, with its file and line; empty when there is none.
    QString declarativeComplaint() const;
    /// The file that its settings stand in, for a test that writes some before the start.
    QString settingsFile() const;

private:
    QString outputFile() const;

    QProcess m_process;
    QTemporaryDir m_home;
    QStringList m_arguments;
    quint16 m_port = 0;
};

} // namespace vantrel::test
