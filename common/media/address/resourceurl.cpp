#include "common/media/address/resourceurl.h"

#include "common/media/address/mediafiles.h"

namespace vantrel {

QUrl resourceUrl(const QString& host, unsigned short port, const QString& path, const QUrl& mediaUrl)
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(host);
    url.setPort(port);
    url.setPath(path);
    const QByteArray file = QUrl::toPercentEncoding(mediaUrlToString(mediaUrl));
    url.setQuery(QStringLiteral("file=") + QString::fromLatin1(file), QUrl::StrictMode);
    return url;
}

} // namespace vantrel
