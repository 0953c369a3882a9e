#pragma once

#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/ftp/qftp.h"
#include "common/filesystem/ftp/qftpcommand.h"
#include "common/filesystem/ftp/qftppi.h"

#include <QObject>

#include <list>
#include <memory>

namespace vantrel {

/// The queue of a QFtp, which owns it, and what its protocol interpreter tells.
class QFtpPrivate : public QObject
{
    Q_OBJECT

public:
    explicit QFtpPrivate(QFtp* q);

    int addCommand(std::unique_ptr<QFtpCommand> command);
    /// All but the current one. An end of the connection may be kept: that it is to end still holds.
    void dropWaiting(const QString& why, bool keepsClose);
    void abort();

    QFtpPI pi;
    std::list<std::unique_ptr<QFtpCommand>> pending; // the first is the current one
    int nextId = 0;                                  // 0 takes a new number
    QFtp::State state = QFtp::Unconnected;
    QFtp::Error error = QFtp::NoError;
    QString errorString;
    QFtp::TransferMode transferMode = QFtp::Passive;
    QString host;
    quint16 port = 0;
    FtpOutcome outcome;

    QFtpCommand* current() const { return pending.empty() ? nullptr : pending.front().get(); }

public Q_SLOTS:
    void _q_startNextCommand();
    void _q_piFinished(const QString& text);
    void _q_piError(int code, const QString& text);
    void _q_piConnectState(int state);

private:
    void schedule();
    void start(QFtpCommand& command);
    void startPut(QFtpCommand& command);
    void onReply(int code, const QString& text);
    void takeAnswer(const QFtpCommand& command, int code, const QString& text);
    void takeChecksum(int code, const QString& text);
    bool goOn(QFtpCommand& command);
    bool askAboutIt(QFtpCommand& command);
    bool giveName(QFtpCommand& command);
    void setOutcome(FtpOutcome next);
    void rewriteForProxy(QFtpCommand& command) const;
    void finish(bool isError);
    QString described(const QString& text) const;

    QFtp* const m_q;
    QString m_proxyHost;
    quint16 m_proxyPort = 0;
    bool m_knowsChecksums = false; // the server
    struct Answers
    {
        bool isWhole = false;
        bool isFree = false;
        bool isNamed = false; // the file, for its renaming
    } m_answers;              // about the upload that runs
    bool m_isClosing = false; // QUIT was answered, and the connection is to go
};

} // namespace vantrel
