#pragma once

#include "common/filesystem/ftp/qurlinfo.h"
#include "common/filesystem/ftp/ratelimit.h"
#include "tarn/ftp/ftplisting.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

class QIODevice;

namespace vantrel {

class QFtpPI;

/// The data connection of a session: receives listings and files, sends files. Owned by the QFtpPI, which is
/// the one that knows what is going on.
class QFtpDTP : public QObject
{
    Q_OBJECT

public:
    enum ConnectState {
        CsHostFound = 0,
        CsConnected = 1,
        CsClosed = 2,
        CsHostNotFound = 3,
        CsConnectionRefused = 4,
    };

    explicit QFtpDTP(QFtpPI* pi);
    ~QFtpDTP() override;

    /// Source or sink of the next transfer; not owned. Where the data begin in the file: offset, bytes.
    void setData(QByteArray* data);
    void setDevice(QIODevice* device, qint64 offset);
    /// For the next command: nothing to send, nothing received, no error.
    void reset();
    /// Of the whole file; tells the progress.
    void setBytesTotal(qint64 bytes);
    qint64 bytesTotal() const { return m_bytesTotal; }
    /// Of the next transfer the checksum is wanted, CRC-32, of all that passes between here and the device.
    void setChecksumWanted(bool isWanted) { m_isChecksumWanted = isWanted; }
    bool isChecksumWanted() const { return m_isChecksumWanted; }
    quint32 checksum() const { return m_checksum; }

    void connectToHost(const QHostAddress& address, quint16 port);
    /// Listens for the server's connection. Its port, -1 where that is not possible.
    int setupListener(const QHostAddress& address);
    /// Takes a connection that is there already.
    void waitForConnection();
    QAbstractSocket::SocketState state() const;
    /// Drops the connection and what the transfer worked with, and tells nobody.
    void abortConnection();
    /// Takes what came already of a download that failed: another one may go on there.
    void collect();
    /// The transfer is given up: what still comes is dropped.
    void dropData();

    /// What went wrong although the server is content.
    QString errorText() const { return m_errorText; }
    void clearError() { m_errorText.clear(); }
    /// Of files, both ways; 0: as fast as it goes.
    void setRateLimit(qint64 bytesPerSecond) { m_limit.set(bytesPerSecond); }

    /// Sends what there is, as fast as the socket takes it.
    void writeData();
    /// Bytes of a transfer without a device.
    qint64 bytesAvailable() const { return m_bytesFromSocket.size(); }
    qint64 read(char* data, qint64 maxSize);
    QByteArray readAll();

    /// A line of a listing. False when it is none.
    static bool parseDir(const QByteArray& line, const QString& userName, QUrlInfo& info);

Q_SIGNALS:
    void listInfo(const vantrel::QUrlInfo& info);
    void readyRead();
    void dataTransferProgress(qint64 done, qint64 total);
    void connectState(int state);
    /// Data came or went.
    void moved();
    /// The transfer cannot go on on this side: errorText().
    void failed();

public Q_SLOTS:
    void dataReadyRead();

private:
    void wireSocket(std::unique_ptr<QTcpSocket> socket, const QString& name);
    void setupSocket();
    void socketConnected();
    void socketReadyRead();
    void socketError(QAbstractSocket::SocketError error);
    void socketConnectionClosed();
    void socketBytesWritten();
    bool writeAll(const char* data, qint64 size);
    bool consume(const char* data, qint64 size);
    void addToChecksum(const char* data, qint64 size);
    void readListing(QByteArrayView piece);
    void readListLine(const QByteArray& line);
    void sendBytes();
    void sendDevice();
    bool sendBlock(qint64 most);
    bool noteSent(qint64 size);
    void comeBack(bool isSending);
    void finishSending();
    void fail(const QString& text);
    void tellProgress(bool isLast);
    void clearData();

    QFtpPI* const m_pi;
    std::unique_ptr<QTcpSocket> m_socket;
    QTcpServer m_listener;
    qint64 m_bytesDone = 0; // offset and what went over the line
    qint64 m_sent = 0;      // offset and what was handed to the socket
    qint64 m_bytesTotal = 0;
    qint64 m_offset = 0;
    bool m_isChecksumWanted = false;
    quint32 m_checksum = 0;
    bool m_callWriteData = false; // there is more to send
    bool m_isSending = false;     // the server said that it takes it
    bool m_isDropping = false;
    QByteArray* m_data = nullptr;
    QIODevice* m_device = nullptr;
    QByteArray m_bytesFromSocket;
    QByteArray m_line; // of a listing, begun
    qint64 m_lines = 0;
    FtpTime m_now; // when its first line came
    QString m_errorText;
    QByteArray m_block;
    RateLimit m_limit;
    bool m_isHeld = false; // comes back when more may go
    QElapsedTimer m_lastTold;
    qint64 m_toldDone = -1;
};

} // namespace vantrel
