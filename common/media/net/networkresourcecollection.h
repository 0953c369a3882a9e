#pragma once

#include "common/media/net/abstractnetworkreply.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>

class QTimer;

namespace vantrel {

class AbstractNetworkAccessManager;

/// Fetches resources over HTTP, one request a URL at a time, and sends a request again that nobody answers.
/// Only a few are under way at once, those asked for last first: thousands may be asked for in one go, and
/// neither time out while they wait in line nor keep an edit of the operator's waiting behind them. Owned by
/// the provider that it serves; main thread only.
class NetworkResourceCollection : public QObject
{
    Q_OBJECT

public:
    /// A request is sent at most retryCount + 1 times, timeoutMs apart.
    NetworkResourceCollection(AbstractNetworkAccessManager* manager, uint retryCount, int timeoutMs,
                              QObject* parent = nullptr);
    ~NetworkResourceCollection() override;

    static constexpr int maxRunning = 6; // requests under way

    /// Starts nothing while the same text is being fetched.
    void fetch(const QString& url, const QUrl& request);
    bool isFetching(const QString& url) const { return m_fetches.contains(url); }
    /// What is being fetched has changed meanwhile: its answer is given, and then it is fetched once more.
    void fetchAgainAfterwards(const QString& url);
    void terminateFetch(const QString& url);
    void terminateAll();

Q_SIGNALS:
    void dataReceived(QString url, QByteArray data);
    void dataNotFound(QString url);

private:
    struct FetchContext;

    void createFetchContext(const QString& url, const QUrl& request);
    void startNext();
    void send(const QString& url);
    void release(FetchContext& context);
    void onReplyFinished(const QString& url);
    void onReplyTimeout(const QString& url);
    void handleSuccessfulReply(const QString& url, const NetworkReplyPtr& reply);
    void handleNotFound(const QString& url);
    void removeFetchContext(const QString& url);

    QPointer<AbstractNetworkAccessManager> m_manager;
    uint m_retryCount;
    int m_timeoutMs;
    QHash<QString, std::shared_ptr<FetchContext>> m_fetches;
    QList<QString> m_waiting; // of m_fetches: not sent yet, the next one last
    int m_running = 0;
    bool m_starting = false;
};

} // namespace vantrel
