#pragma once

#include "common/filesystem/server/servertask.h"

#include <QElapsedTimer>

class QIODevice;

namespace vantrel {

class FileTransferOperation;

/// A file on its way from the server into the device that the other side has opened. What a lost link has
/// torn goes on where it broke off, as long as the file is the same. Of a move the source goes once the other
/// side holds all of it.
class ServerDownload : public ServerTask
{
    Q_OBJECT

public:
    ServerDownload(ServerFileSystemPrivate* server, QSharedPointer<FileTransferOperation> operation);
    ~ServerDownload() override;

    void start() override;
    /// Both sides have all that they wanted: the source of a move is to go.
    void removeSource();

protected:
    QStringList touched() const override;
    void fail(const QString& message) override;

private:
    void begin();
    void askWhenModified(std::function<void(const QString&)> next);
    void goOn();
    void confirm();
    void succeed();
    void measure();
    void onMeasured(qint64 bytes);
    void read(qint64 offset);
    void onRead(Outcome outcome);
    void startAnew();
    void onProgress(const QString& path, qint64 done, qint64 total);
    void onSourceRemoved(bool isRemoved);

    FileTransferOperation* m_transfer; // the operation
    QSharedPointer<QIODevice> m_output;
    QString m_source;
    qint64 m_size = -1;    // bytes of the source; -1 when the server does not say
    QString m_modified;    // when the source was, in the server's words; empty when it does not say
    qint64 m_done = 0;     // bytes in the device
    qint64 m_reached = -1; // bytes in the device at the last break
    int m_vain = 0;        // attempts that brought nothing
    int m_unlike = 0;      // attempts that brought something else than the server has
    QMetaObject::Connection m_progress;
    QElapsedTimer m_sinceLog;
};

} // namespace vantrel
