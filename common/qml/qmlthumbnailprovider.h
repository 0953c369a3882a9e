#pragma once

#include <QQuickImageProvider>
#include <QUrl>

namespace vantrel {

/// The thumbnails of media files for declarative views, under "image://thumbnails/". The engine owns it; main
/// thread only.
class QmlThumbnailProvider : public QQuickImageProvider
{
    Q_OBJECT

public:
    QmlThumbnailProvider();

    /// Another one with each millisecond, so that no image cache serves a stale picture.
    static QString generateUniqueUrl(const QUrl& media);
    /// The media file that such a URL asks for; false when it names none.
    static bool parseIdInUrl(const QUrl& url, QString& out);
    /// A null pixmap when there is no session or no picture.
    QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace vantrel
