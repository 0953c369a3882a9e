#pragma once

#include "common/media/abstractnetworkreply.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>

class QTimer;

namespace vantrel {

class AbstractNetworkAccessManager;

/// Fetches resources over HTTP, one request a URL at a time, and sends a request again that nobody answers.
/// Owned by the provider that it serves; main thread only.
class NetworkResourceCollection : public QObject
{
    Q_OBJECT

public:
    /// A request is sent at most retryCount + 1 times, timeoutMs apart.
    NetworkResourceCollection(AbstractNetworkAccessManager* manager, uint retryCount, int timeoutMs,
                              QObject* parent = nullptr);
    ~NetworkResourceCollection() override;

    /// Starts nothing while the same text is being fetched.
    void fetch(const QString& url, const QUrl& request);
    bool isFetching(const QString& url) const { return m_fetches.contains(url); }
    void terminateFetch(const QString& url);
    void terminateAll();

Q_SIGNALS:
    void dataReceived(QString url, QByteArray data);
    void dataNotFound(QString url);

private:
    struct FetchContext;

    void createFetchContext(const QString& url, const QUrl& request);
    void send(const QString& url);
    void onReplyFinished(const QString& url);
    void onReplyTimeout(const QString& url);
    void handleSuccessfulReply(const QString& url, const NetworkReplyPtr& reply);
    void handleNotFound(const QString& url);
    void removeFetchContext(const QString& url);

    QPointer<AbstractNetworkAccessManager> m_manager;
    uint m_retryCount;
    int m_timeoutMs;
    QHash<QString, std::shared_ptr<FetchContext>> m_fetches;
};

} // namespace vantrel
