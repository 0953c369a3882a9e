#pragma once

#include "common/filesystem/ftp/qftp.h"
#include "common/filesystem/ftp/qftpdtp.h"
#include "tarn/ftp/ftpreply.h"

#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>

namespace vantrel {

/// The control connection of a session: sends the lines of one command after the other and judges the
/// answers. A server that says nothing for longer than the patience, while something is wanted of it, loses
/// the connection. Owned by the QFtpPrivate.
class QFtpPI : public QObject
{
    Q_OBJECT

public:
    enum State { Begin = 0, Idle = 1, Waiting = 2, Success = 3, Failure = 4 };
    enum class AbortState { None = 0, AbortStarted = 1, WaitForAbortToFinish = 2 };

    explicit QFtpPI(QObject* parent = nullptr);
    ~QFtpPI() override;

    void connectToHost(const QString& host, quint16 port);
    /// False, with error(), when something is under way or there is no connection.
    bool sendCommands(const QStringList& lines);
    void clearPendingCommands();
    /// Ends the command under way: error() follows when both sides are in step again, with this text.
    void abort(const QString& why);
    /// The connection goes at once; what was under way fails with that text.
    void drop(QFtp::Error error, const QString& text);
    /// The answer to QUIT came: the server may close first.
    void closeSoon();

    QString currentCommand() const { return m_currentCmd; }
    /// Of the answer that is told as finished or as an error.
    int replyCode() const { return m_reply.code; }
    bool isBinaryDownload() const
    {
        return m_type == QLatin1Char('I') && m_currentCmd.startsWith(QLatin1String("RETR"));
    }
    bool isPeer(const QHostAddress& address) const;
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }
    /// The next answer is told by rawFtpReply() and not acted upon.
    void setRawCommand() { m_rawCommand = true; }
    /// The same for all lines of the next command, none of which can fail.
    void setQuestions() { m_isAsking = true; }
    /// Extended passive and active mode may be tried again.
    void resetTransferConnection() { m_transferConnectionExtended = true; }
    QFtpDTP& dtp() { return m_dtp; }

Q_SIGNALS:
    void connectState(int state);
    void finished(const QString& text);
    void error(int code, const QString& text);
    void rawFtpReply(int code, const QString& text);
    void fileSize(qint64 bytes);

private:
    /// The current line, of data.
    bool isTransfer() const;
    void hostFound();
    void connected();
    void connectionClosed();
    void socketError(QAbstractSocket::SocketError error);
    void readyRead();
    void takeReplies();
    bool processReply();
    bool processAbortReply(int code);
    bool processGreeting(int code);
    void actOnReply(int code);
    bool openDataConnection(int code);
    void goOn();
    void handleFailure();
    void startNextCmd();
    void sendLines();
    bool prepareLine(QString& line);
    bool preparePort(QString& line);
    void dtpConnectState(int state);
    void dataConnectionGone();
    void stepAbort();
    void probe();
    void finishAbort();
    void tellFinished(const QString& text);
    void tellError(QFtp::Error code, const QString& text);
    void watch();
    void losePatience();

    QFtpDTP m_dtp;
    QTcpSocket m_commandSocket;
    FtpReplyReader m_reader;
    FtpReply m_reply; // being judged, or kept until the data have come
    QString m_replyText;
    State m_state = Begin;
    AbortState m_abortState = AbortState::None;
    QString m_abortReason;
    int m_ownReplies = 0; // still to come to the lines that were given up
    int m_abortReplies = 0;
    enum class Probe { None, Noop, Pwd } m_probe = Probe::None; // what went out to get in step again
    QStringList m_pendingCommands;
    int m_ahead = 0;   // of these, sent already
    int m_unheard = 0; // answers that nobody waits for any more
    QChar m_type;      // of data, as the server agreed to last; null while that is open
    bool m_isAsking = false;
    QString m_currentCmd;
    bool m_rawCommand = false;
    bool m_transferConnectionExtended = true;
    bool m_waitForDtpToConnect = false;
    bool m_waitForDtpToClose = false;
    bool m_isBusy = false;         // finished() or error() is owed
    bool m_isOpen = false;         // connected() or on the way there
    bool m_hadPreliminary = false; // a 1yz to the current line
    std::chrono::milliseconds m_patience;
    QTimer m_watch;
    QTimer m_abortStep; // what is done next if nothing is heard
};

} // namespace vantrel
