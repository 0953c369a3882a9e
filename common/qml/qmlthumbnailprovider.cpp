#include "common/qml/qmlthumbnailprovider.h"

#include "common/media/address/mediafiles.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/session.h"

#include <QUrlQuery>

namespace vantrel {

QmlThumbnailProvider::QmlThumbnailProvider()
    : QQuickImageProvider(QQuickImageProvider::Pixmap)
{
}

QString QmlThumbnailProvider::generateUniqueUrl(const QUrl& media)
{
    return thumbnailImageUrl(media);
}

bool QmlThumbnailProvider::parseIdInUrl(const QUrl& url, QString& out)
{
    const QUrlQuery query(url);
    if (!query.hasQueryItem(QStringLiteral("file")))
        return false;
    out = query.queryItemValue(QStringLiteral("file"), QUrl::FullyDecoded);
    return true;
}

QPixmap QmlThumbnailProvider::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize)
{
    QPixmap picture;
    QString file;
    const Session* session = Session::instance();
    MediaDataAggregator* aggregator = session ? session->mediaDataAggregator() : nullptr;
    if (aggregator && parseIdInUrl(QUrl(id), file)) {
        if (const ThumbnailPtr thumbnail = aggregator->thumbnail(QUrl(file)))
            picture = *thumbnail;
    }
    if (size)
        *size = picture.size();
    if (!picture.isNull() && requestedSize.width() > 0 && requestedSize.height() > 0)
        return picture.scaled(requestedSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return picture;
}

} // namespace vantrel
