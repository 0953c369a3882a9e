#pragma once

#include <QNetworkReply>

namespace vantrel {

/// Ends a reply that nobody waits for any more. One that has failed ends by itself, and finished() of it
/// comes a moment later.
inline void endReply(QNetworkReply* reply)
{
    if (reply && reply->isRunning() && reply->error() == QNetworkReply::NoError)
        reply->abort();
}

} // namespace vantrel
