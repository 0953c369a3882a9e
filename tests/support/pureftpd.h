#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace vantrel::test {

/// A file server of another make on a free port of the loopback interface, with a folder of its own and the
/// factory's credentials. ./test unpacks it beside the programs; it needs root, as it gives rights up.
class PureFtpd
{
public:
    ~PureFtpd();

    /// False where it was not unpacked or cannot run: skip the test then.
    static bool isAvailable();
    /// Starts and waits until it answers.
    bool start();

    QString folder() const { return m_folder.filePath(QStringLiteral("media")); }
    quint16 port() const { return m_port; }

private:
    bool makeUser();
    bool isAnswering() const;

    QTemporaryDir m_folder;
    QProcess m_process;
    quint16 m_port = 0;
};

} // namespace vantrel::test
