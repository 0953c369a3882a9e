#pragma once

#include <QString>
#include <QStringList>

class QUrl;

namespace vantrel {

/// The text of a URL that names media, as the server compares it: fully encoded, brackets encoded too, and
/// "=" left as it is.
QString mediaUrlToString(const QUrl& url);

/// The text after the last "/", a trailing one ignored; the whole path when there is none.
QString getNameInPath(const QString& path);

/// The extensions of video and audio files, each with the prefix in front ("." or "*.").
QStringList mediaFileExtensions(const QString& prefix);
/// Those of sound alone.
QStringList soundFileExtensions(const QString& prefix);
/// The extensions of images, which may be one of a sequence.
QStringList imageSequenceFileExtensions(const QString& prefix);
/// Both, media first.
QStringList allFileExtensions(const QString& prefix);

/// The URL under which declarative views ask for a thumbnail: "image://thumbnails/" with the media's URL and
/// the time in milliseconds, so that no image cache serves a stale picture.
QString thumbnailImageUrl(const QUrl& media);

} // namespace vantrel
