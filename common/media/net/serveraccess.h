#pragma once

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QSet>
#include <QTimer>

namespace vantrel {

/// HTTP to the server with bounds that no answer can leave: a redirect stays on its host, the headers come
/// within a quarter of a minute and are no flood, and what follows keeps coming, an event stream apart. Owned
/// by the session; main thread.
class ServerAccess : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit ServerAccess(QObject* parent = nullptr);
    ~ServerAccess() override;

    /// For tests in place of a quarter of a minute; milliseconds.
    void setHeaderTime(int ms) { m_headerTime = ms; }
    /// For tests in place of 2 GiB: how far headers without end may make the process grow.
    void setFloodBytes(qint64 bytes) { m_floodBytes = bytes; }

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* body = nullptr) override;

private:
    void await(QNetworkReply* reply);
    void arrived(QNetworkReply* reply);
    void checkMemory();

    int m_headerTime;
    qint64 m_floodBytes;
    QSet<QNetworkReply*> m_awaited; // whose headers have not come
    QTimer m_watch;
    QElapsedTimer m_sinceBase;
    qint64 m_base = 0; // bytes that this process took then
};

} // namespace vantrel
