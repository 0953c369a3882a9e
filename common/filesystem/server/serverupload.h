#pragma once

#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/server/servertask.h"

#include <QDateTime>
#include <QElapsedTimer>

class QIODevice;

namespace vantrel {

class FileTransferOperation;

/// A file on its way to the server: it goes under a hidden name beside its place, and takes its own when all
/// of it is there. What a lost link has torn goes on where it broke off, also for another attempt at the same
/// file.
class ServerUpload : public ServerTask
{
    Q_OBJECT

public:
    ServerUpload(ServerFileSystemPrivate* server, QSharedPointer<FileTransferOperation> operation);
    ~ServerUpload() override;

    void start() override;
    /// Where the file is to lie, or lies.
    QString destination() const { return m_destination; }

protected:
    QStringList touched() const override;
    void fail(const QString& message) override;
    void skip() override;
    void onAborted() override;

private:
    void sendTo(const QString& destination);
    void send(qint64 offset);
    void onWritten(Outcome outcome);
    bool isCompared(const FtpOutcome& beyond);
    FtpPlacing placing() const;
    void onProgress(const QString& path, qint64 done, qint64 total);
    void goOnFromWhatIsLeft();
    void measureFile(const QString& path, std::function<void(qint64)> next);
    void onMeasured(qint64 bytes);
    void goOnFrom(qint64 bytes);
    QString writeFault() const;
    void place();
    void meetThere();
    void rename();
    void onRenamed(Outcome outcome);
    void findOutWhetherRenamed();
    void succeed();
    bool isSourceChanged() const;
    QString temporaryName() const;

    FileTransferOperation* m_transfer; // the operation
    QSharedPointer<QIODevice> m_input;
    qint64 m_size = 0;         // bytes of the source
    QDateTime m_modified;      // of the source
    QString m_destination;     // where it is to lie
    QString m_temporary;       // where it lies until it is whole
    qint64 m_reached = -1;     // bytes that the server had at the last break
    int m_vain = 0;            // attempts that brought nothing
    int m_unlike = 0;          // attempts after which the server had something else
    bool m_isVerified = false; // what was sent last
    bool m_isSent = false;     // something of it may lie at the server
    QElapsedTimer m_sinceLog;
};

} // namespace vantrel
