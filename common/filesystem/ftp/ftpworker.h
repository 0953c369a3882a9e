#pragma once

#include "common/filesystem/ftp/ftplisting.h"
#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/ftp/qftp.h"

#include <QMutex>
#include <QThread>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

class QIODevice;

namespace vantrel {

/// The thread of one QFtp. The calls come from the main thread; each gives the number of the command as soon
/// as it is on its way and never waits for what that thread does, which may be a slow disk. Owned by the
/// FtpClientPrivate; the object itself lives on the main thread.
class FtpWorker : public QThread
{
    Q_OBJECT

public:
    explicit FtpWorker(QObject* parent = nullptr);
    ~FtpWorker() override;

    int connectToHost(const QString& host, quint16 port);
    int login(const QString& user, const QString& password);
    int list(const QString& path);
    int removeFile(const QString& path);
    int removeDirectory(const QString& path);
    int createDirectory(const QString& path);
    int rename(const QString& from, const QString& to);
    /// The device goes to the worker's thread, and comes back before the command is told to be finished.
    /// offset: bytes. after: 0, or the number of a transfer: it begins as soon as that one has succeeded, and
    /// else not at all, which followUpDropped() tells.
    int put(QIODevice* device, const QString& path, QFtp::TransferType type, qint64 offset = 0,
            int after = 0);
    int putAndPlace(QIODevice* device, const QString& path, const FtpPlacing& placing, int after = 0);
    int get(const QString& path, QIODevice* device, QFtp::TransferType type, qint64 offset = 0,
            int after = 0);
    int size(const QString& path);
    int modified(const QString& path);
    void disconnectServer();
    /// The command of that number, and the transfer that was to follow it; nothing when it is over.
    void abort(int id);
    /// Only the transfer of that number, when it has not begun.
    void dropFollowUp(int id);
    void noop();
    void setPatience(std::chrono::milliseconds patience);
    void setRateLimit(qint64 bytesPerSecond);

    QFtp::State ftpState() const { return m_state; }
    /// Of the command that ended last.
    QFtp::Error getError(QString* text) const;
    /// Of the transfer of that number, as far as it has come; nothing where two others have begun since.
    FtpOutcome outcome(int id) const;

    /// Ends the thread and waits for it. Commands under way are dropped; their devices are left alone then.
    void shutDown();

Q_SIGNALS:
    void stateChanged(int state);
    /// All of a listing at once, before its command is told to be finished.
    void listInfo(const vantrel::FtpListing& listing);
    void dataTransferProgress(qint64 done, qint64 total);
    void fileSize(qint64 bytes);
    void fileModified(const QString& time);
    void commandStarted(int id);
    /// done, total: bytes that a small transfer came to, of which nothing else is told; -1 of others.
    void commandFinished(int id, bool error, qint64 done, qint64 total);
    /// It will not begin; its device is back.
    void followUpDropped(int id);

protected:
    void run() override;

private:
    using Call = std::function<void(QFtp& ftp)>;
    void post(Call call);
    int command(Call call);
    struct Transfer
    {
        int id = 0;
        QIODevice* device = nullptr;
        Call call;
    };
    int transfer(QIODevice* device, int after, Call call);
    void begin(QFtp& ftp, Transfer transfer);
    void drop(const Transfer& transfer);
    void noteOutcome(int id, FtpOutcome outcome);
    void onDataTransferProgress(const QFtp& ftp, qint64 done, qint64 total);
    void tellHeld();
    void onCommandFinished(int id, QFtp::Error error, const QString& text);
    void returnDevice(bool error);

    mutable QMutex m_mutex;    // guards what follows, up to the error's text
    QFtp* m_ftp = nullptr;     // while the thread runs
    std::vector<Call> m_early; // from before it ran
    QFtp::Error m_error = QFtp::NoError;
    QString m_errorText;
    std::array<std::pair<int, FtpOutcome>, 2> m_outcomes; // of transfers by number, the newest first
    std::atomic<QFtp::State> m_state{QFtp::Unconnected};
    QThread* const m_home;
    // On the worker's thread, of the transfer under way or waiting:
    QIODevice* m_device = nullptr;
    int m_deviceId = 0;
    Transfer m_followUp;      // begins when the one under way has succeeded
    int m_endedId = 0;        // of the command that ended last
    bool m_hasFailed = false; // that one
    bool m_isPresized = false;
    // Of small transfers, told with their end: each word on its way wakes the main thread.
    int m_heldStart = 0; // the number of a command
    std::vector<std::pair<qint64, qint64>> m_heldProgress;
    FtpListing m_listing; // on the worker's thread, of the LIST under way or waiting
};

} // namespace vantrel
