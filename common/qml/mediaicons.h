#pragma once

#include "common/ui/style/mediaicon.h"
#include "tarn/media/mediaenums.h"

#include <QObject>

namespace vantrel {

/// The drawings for kinds of media, as declarative views ask for them: the same as everywhere.
class MediaIcons : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Of a "Media.VideoFile", say.
    Q_INVOKABLE static QString of(int kind) { return mediaIcon(static_cast<MediaType>(kind)); }
};

} // namespace vantrel
