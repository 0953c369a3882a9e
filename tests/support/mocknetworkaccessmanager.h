#pragma once

#include "common/media/net/abstractnetworkaccessmanager.h"

#include <QHash>
#include <QList>
#include <QTimer>
#include <QUrl>

namespace vantrel::test {

/// An answer made up by a test: the status follows from the error unless it is set.
class MockNetworkReply : public AbstractNetworkReply
{
public:
    MockNetworkReply(const QByteArray& body, QNetworkReply::NetworkError networkError, bool running = false,
                     QObject* parent = nullptr)
        : AbstractNetworkReply(parent)
        , m_body(body)
        , m_error(networkError)
        , m_running(running)
        , m_status(networkError == QNetworkReply::NoError ? 200 : 0)
    {
    }

    QByteArray readAll() override { return std::exchange(m_body, QByteArray()); }
    bool isRunning() const override { return m_running; }
    void abort() override
    {
        aborted = true;
        m_running = false;
        m_error = QNetworkReply::OperationCanceledError;
    }
    QNetworkReply::NetworkError error() const override { return m_error; }
    QString errorString() const override { return QStringLiteral("mock"); }
    QNetworkRequest request() const override { return m_request; }
    void setRequest(const QNetworkRequest& request) { m_request = request; }
    QVariant attribute(QNetworkRequest::Attribute code) const override
    {
        return code == QNetworkRequest::HttpStatusCodeAttribute && m_status ? QVariant(m_status) : QVariant();
    }
    void setStatus(int status) { m_status = status; }
    void finish()
    {
        m_running = false;
        Q_EMIT finished();
    }

    bool aborted = false;

private:
    QByteArray m_body;
    QNetworkReply::NetworkError m_error;
    bool m_running;
    int m_status;
    QNetworkRequest m_request;
};

/// Gives canned answers by URL, each in the next turn of the event loop, and keeps count of what was asked. A
/// URL without one is never answered, unless told otherwise.
class MockNetworkAccessManager : public AbstractNetworkAccessManager
{
public:
    using ReplyPtr = QSharedPointer<MockNetworkReply>;

    NetworkReplyPtr get(const QNetworkRequest& request) override { return answer(m_get, request, {}); }
    NetworkReplyPtr post(const QNetworkRequest& request, const QByteArray& body) override
    {
        return answer(m_post, request, body);
    }
    NetworkReplyPtr patch(const QNetworkRequest& request, const QByteArray& body) override
    {
        return answer(m_patch, request, body);
    }

    void addGetReply(const QUrl& url, const ReplyPtr& reply) { m_get[url].append(reply); }
    void addGetReply(const QUrl& url, const QByteArray& body,
                     QNetworkReply::NetworkError error = QNetworkReply::NoError)
    {
        addGetReply(url, ReplyPtr::create(body, error));
    }
    void addPostReply(const QUrl& url, const ReplyPtr& reply) { m_post[url].append(reply); }
    void addPostReply(const QUrl& url, const QByteArray& body,
                      QNetworkReply::NetworkError error = QNetworkReply::NoError)
    {
        addPostReply(url, ReplyPtr::create(body, error));
    }
    void addPatchReply(const QUrl& url, const ReplyPtr& reply) { m_patch[url].append(reply); }
    void addPatchReply(const QUrl& url, const QByteArray& body,
                       QNetworkReply::NetworkError error = QNetworkReply::NoError)
    {
        addPatchReply(url, ReplyPtr::create(body, error));
    }

    void emitFinished(const ReplyPtr& reply)
    {
        reply->finish();
        Q_EMIT finished(reply);
    }

    int requestCount(const QUrl& url) const { return static_cast<int>(urls.count(url)); }

    QList<QUrl> urls;          // of all requests, in order
    QList<QByteArray> bodies;  // theirs
    bool refuses = false;      // gives null for every request
    bool knowsNothing = false; // answers "not found" where there is no canned answer

private:
    using Replies = QHash<QUrl, QList<ReplyPtr>>;

    NetworkReplyPtr answer(Replies& replies, const QNetworkRequest& request, const QByteArray& body)
    {
        urls.append(request.url());
        bodies.append(body);
        if (refuses)
            return {};
        QList<ReplyPtr>& canned = replies[request.url()];
        if (canned.isEmpty() && knowsNothing)
            canned.append(ReplyPtr::create(QByteArray(), QNetworkReply::ContentNotFoundError));
        if (canned.isEmpty())
            return ReplyPtr::create(QByteArray(), QNetworkReply::NoError, true);
        const ReplyPtr reply = canned.takeFirst();
        reply->setRequest(request);
        QTimer::singleShot(0, this, [this, reply] { emitFinished(reply); });
        return reply;
    }

    Replies m_get;
    Replies m_post;
    Replies m_patch;
};

} // namespace vantrel::test
