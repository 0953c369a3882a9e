#pragma once

#include "common/media/address/mediastate.h"

#include <QSet>
#include <QString>
#include <QUrl>

#include <cstdint>

namespace vantrel {

enum class MediaType : std::int32_t;

/// What is known of a media file beside its name and size. Only the server's side fills it.
struct FileMetadata
{
    Q_GADGET
    Q_PROPERTY(QString videoCodec MEMBER videoCodec)
    Q_PROPERTY(quint64 durationMs MEMBER durationMs)
    Q_PROPERTY(bool isPlayable MEMBER isPlayable)
    Q_PROPERTY(QSet<QString> mediaCaveats MEMBER mediaCaveats)
    Q_PROPERTY(vantrel::MediaState mediaState MEMBER mediaState)
    Q_PROPERTY(QUrl thumbnail MEMBER thumbnail)
    Q_PROPERTY(vantrel::MediaType mediaType MEMBER mediaType)

public:
    QString videoCodec;
    quint64 durationMs = 0;
    /// The server can play the file.
    bool isPlayable = false;
    /// For the operator: why it cannot be played, and one text a caveat.
    QSet<QString> mediaCaveats;
    MediaState mediaState = MediaState::UnknownState;
    /// Where declarative views find its picture.
    QUrl thumbnail;
    MediaType mediaType{}; // Unknown

    /// The server has told of the file; asked for is not answered.
    bool isTold() const
    {
        return isPlayable || mediaType != MediaType{} || mediaState != MediaState::UnknownState;
    }

    bool operator==(const FileMetadata&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FileMetadata)
