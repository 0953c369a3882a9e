#include "common/media/address/mediafiles.h"

#include "tarn/media/mediasuffixes.h"

#include <QDateTime>
#include <QUrl>

namespace vantrel {

namespace {

QStringList withPrefix(std::span<const std::string_view> suffixes, const QString& prefix)
{
    QStringList list;
    for (const std::string_view suffix : suffixes)
        list.append(prefix + QString::fromUtf8(suffix.data(), static_cast<qsizetype>(suffix.size())));
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
    return withPrefix(offeredMovieSuffixes, prefix);
}

QStringList soundFileExtensions(const QString& prefix)
{
    return withPrefix(soundSuffixes, prefix);
}

QStringList imageSequenceFileExtensions(const QString& prefix)
{
    return withPrefix(pictureSuffixes, prefix);
}

QStringList allFileExtensions(const QString& prefix)
{
    return mediaFileExtensions(prefix) + imageSequenceFileExtensions(prefix);
}

QString thumbnailImageUrl(const QUrl& media)
{
    const QString file = QString::fromLatin1(QUrl::toPercentEncoding(mediaUrlToString(media)));
    // Both at once: there are percent signs in the first.
    return QStringLiteral("image://thumbnails/?file=%1&time=%2")
        .arg(file, QString::number(QDateTime::currentMSecsSinceEpoch()));
}

} // namespace vantrel
