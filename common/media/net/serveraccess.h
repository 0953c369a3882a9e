#pragma once

#include <QNetworkAccessManager>

namespace vantrel {

/// HTTP to the server with bounds that no answer can leave: a redirect stays on its host, the headers come
/// within a quarter of a minute, and what follows keeps coming, an event stream apart. Owned by the session;
/// main thread.
class ServerAccess : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit ServerAccess(QObject* parent = nullptr);

    /// For tests in place of a quarter of a minute; milliseconds.
    void setHeaderTime(int ms) { m_headerTime = ms; }

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* body = nullptr) override;

private:
    int m_headerTime;
};

} // namespace vantrel
