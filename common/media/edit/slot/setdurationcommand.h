#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/mediaaddress.h"

#include <QUrl>

namespace vantrel {

/// Sets how long a slot lasts, in seconds, or that it never ends. The URL is that of the slot, or of its
/// content.
class SetDurationCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// at: which of the slots with this content is meant, where it is known; else it is the first one, and
    /// all slots before it are looked at.
    bool init(const MediaLibrary* library, const QUrl& mediaUrl, double seconds, bool isInfinite,
              const MediaAddress& at = {});
};

} // namespace vantrel
