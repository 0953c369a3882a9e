#pragma once

#include "common/media/net/abstractnetworkaccessmanager.h"

#include <QPointer>

class QNetworkAccessManager;

namespace vantrel {

/// AbstractNetworkAccessManager over Qt's. The session owns both.
class NetworkAccessManager final : public AbstractNetworkAccessManager
{
    Q_OBJECT

public:
    explicit NetworkAccessManager(QNetworkAccessManager* manager, QObject* parent = nullptr);

    NetworkReplyPtr get(const QNetworkRequest& request) override;
    NetworkReplyPtr post(const QNetworkRequest& request, const QByteArray& body) override;
    NetworkReplyPtr patch(const QNetworkRequest& request, const QByteArray& body) override;

    /// Wraps a running reply; the wrapper is kept until the reply has finished.
    NetworkReplyPtr createAndConnectReplyWrapper(QNetworkReply* reply);

private:
    QPointer<QNetworkAccessManager> m_manager;
};

} // namespace vantrel
