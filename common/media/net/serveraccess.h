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

    /// Drops the connections that are kept, and leaves unanswered what is under way on them: in a later turn,
    /// once no body is being sent. Not at all when something is asked for before.
    void forgetConnections();
    /// For tests in place of a quarter of a minute; milliseconds.
    void setHeaderTime(int ms) { m_headerTime = ms; }

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* body = nullptr) override;

private:
    void forgetNow();
    void watchBody(const QNetworkReply* reply);

    int m_headerTime;
    int m_bodies = 0; // of replies that are there
    bool m_isForgetting = false;
};

} // namespace vantrel
