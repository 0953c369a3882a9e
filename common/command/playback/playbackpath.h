#pragma once

#include <QString>

namespace vantrel {

/// The scene path of a channel's preview or program.
inline QString playbackPath(int channel, bool preview)
{
    return QStringLiteral("/device/channels/%1/%2")
        .arg(channel)
        .arg(preview ? QStringLiteral("preview") : QStringLiteral("program"));
}

} // namespace vantrel
