#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace vantrel::test {

/// A real FTP server in a process of its own, on a port of the loopback interface that it keeps over
/// restarts. It can be slow, so that there is a middle in which to kill it.
class FtpPeer
{
public:
    ~FtpPeer() { kill(); }

    static bool isAvailable()
    {
        static const bool isThere =
            QProcess::execute(python(), {QStringLiteral("-c"), QStringLiteral("import pyftpdlib")}) == 0;
        return isThere;
    }

    /// bytesPerSecond: of each transfer; 0 for as fast as it goes. roomBytes: no file grows beyond them, as
    /// if the disk were full then; 0: as far as it goes.
    bool start(int bytesPerSecond = 0, qint64 roomBytes = 0)
    {
        m_process = std::make_unique<QProcess>();
        m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process->start(python(), {QStringLiteral("-c"), QString::fromLatin1(script), folder(),
                                    QString::number(m_port), QString::number(bytesPerSecond),
                                    QString::number(roomBytes)});
        if (!m_process->waitForReadyRead(20000))
            return false;
        m_port = m_process->readLine().trimmed().toUShort();
        return m_port != 0;
    }
    /// As a power failure would.
    void kill()
    {
        if (!m_process)
            return;
        m_process->kill();
        m_process->waitForFinished();
        m_process.reset();
    }
    bool restart(int bytesPerSecond = 0)
    {
        kill();
        return start(bytesPerSecond);
    }

    QString folder() const { return m_folder.path(); }
    QString path(const QString& below) const { return m_folder.filePath(below); }
    quint16 port() const { return m_port; }
    QString user() const { return QStringLiteral("opsadmin"); }
    QString password() const { return QStringLiteral("tnempius"); }

private:
    static QString python() { return QStringLiteral("/usr/bin/python3"); }

    static constexpr const char* script = R"(
import resource
import sys
import time
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, DTPHandler
from pyftpdlib.servers import FTPServer
folder, port, limit, room = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
if room:
    resource.setrlimit(resource.RLIMIT_FSIZE, (room, room))
class Slow(DTPHandler):
    ac_in_buffer_size = ac_out_buffer_size = 16384
    def recv(self, size):
        data = super().recv(size)
        time.sleep(len(data) / limit)
        return data
    def send(self, data):
        sent = super().send(data)
        time.sleep(sent / limit)
        return sent
class Handler(FTPHandler):
    dtp_handler = Slow if limit else DTPHandler
    use_sendfile = not limit
    def get_repr_info(self, as_str=False, extra_info=()):
        return self.remote_ip # the library's own asks a file that may be closed, and never ends a connection then
    def pre_process_command(self, line, cmd, arg):
        if cmd == 'LIST':
            if arg == '-a' or arg.startswith('-a '):
                arg = arg[3:]
            out, rest = '', iter(arg)
            for c in rest:
                out += next(rest, c) if c == '\\' else c
            arg = out
            line = ('LIST ' + arg).rstrip(' ')
        super().pre_process_command(line, cmd, arg)
users = DummyAuthorizer()
users.add_user('opsadmin', 'tnempius', folder, perm='elradfmwMT')
Handler.authorizer = users
server = FTPServer(('127.0.0.1', port), Handler)
print(server.socket.getsockname()[1], flush=True)
import logging
logging.basicConfig(level=logging.ERROR)
server.serve_forever(handle_exit=False)
)";

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_process;
    quint16 m_port = 0;
};

} // namespace vantrel::test
