#pragma once

#include <QUrl>

namespace vantrel {

/// The request for what the server knows of a media file: path + "?file=" and the media's URL,
/// percent-encoded.
QUrl resourceUrl(const QString& host, unsigned short port, const QString& path, const QUrl& mediaUrl);

} // namespace vantrel
