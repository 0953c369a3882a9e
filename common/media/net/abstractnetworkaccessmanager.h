#pragma once

#include "common/media/net/abstractnetworkreply.h"

namespace vantrel {

/// HTTP as the helpers of the media library use it, so that they run without a server in tests. A reply lives
/// as long as its last holder; a running one that is let go is aborted when nobody waits for it. Main thread
/// only.
class AbstractNetworkAccessManager : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual NetworkReplyPtr get(const QNetworkRequest& request) = 0;
    virtual NetworkReplyPtr post(const QNetworkRequest& request, const QByteArray& body) = 0;
    virtual NetworkReplyPtr patch(const QNetworkRequest& request, const QByteArray& body) = 0;

Q_SIGNALS:
    void finished(vantrel::NetworkReplyPtr reply);
};

} // namespace vantrel
