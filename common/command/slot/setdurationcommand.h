#pragma once

#include "common/command/libraryeditcommand.h"

#include <QUrl>

namespace vantrel {

/// Sets how long a slot lasts, in seconds, or that it never ends. The URL is that of the slot, or of its
/// content.
class SetDurationCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, const QUrl& mediaUrl, double seconds, bool isInfinite);
};

} // namespace vantrel
