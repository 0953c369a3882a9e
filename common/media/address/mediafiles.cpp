#include "common/media/address/mediafiles.h"

#include <QDateTime>
#include <QUrl>

namespace vantrel {

namespace {

QStringList withPrefix(const QStringList& extensions, const QString& prefix)
{
    QStringList list;
    list.reserve(extensions.size());
    for (const QString& extension : extensions)
        list.append(QStringLiteral("%1%2").arg(prefix, extension));
    return list;
}

const QStringList& mediaExtensions()
{
    static const QStringList list{
        QStringLiteral("ztx"), QStringLiteral("mov"), QStringLiteral("mp4"),  QStringLiteral("mkv"),
        QStringLiteral("wav"), QStringLiteral("m4v"), QStringLiteral("mpeg"), QStringLiteral("mpg"),
    };
    return list;
}

const QStringList& imageExtensions()
{
    static const QStringList list{
        QStringLiteral("png"), QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("bmp"),
        QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("tga"),  QStringLiteral("dpx"),
        QStringLiteral("exr"), QStringLiteral("webp"),
    };
    return list;
}

} // namespace

QString mediaUrlToString(const QUrl& url)
{
    QString text = url.toString(QUrl::FullyEncoded);
    text.replace(u'[', QStringLiteral("%5B"));
    text.replace(u']', QStringLiteral("%5D"));
    text.replace(QStringLiteral("%3D"), QStringLiteral("="));
    return text;
}

QString getNameInPath(const QString& path)
{
    const QString trimmed = path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
    return trimmed.mid(trimmed.lastIndexOf(u'/') + 1);
}

QStringList mediaFileExtensions(const QString& prefix)
{
    return withPrefix(mediaExtensions(), prefix);
}

QStringList imageSequenceFileExtensions(const QString& prefix)
{
    return withPrefix(imageExtensions(), prefix);
}

QStringList allFileExtensions(const QString& prefix)
{
    return mediaFileExtensions(prefix) + imageSequenceFileExtensions(prefix);
}

QString thumbnailImageUrl(const QUrl& media)
{
    const QString file = QString::fromLatin1(QUrl::toPercentEncoding(mediaUrlToString(media)));
    return QStringLiteral("image://thumbnails/?file=%1&time=%2")
        .arg(file)
        .arg(QDateTime::currentMSecsSinceEpoch());
}

} // namespace vantrel
