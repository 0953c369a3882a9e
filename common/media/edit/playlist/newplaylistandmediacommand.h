#pragma once

#include "common/command/libraryeditcommand.h"

#include <QList>

namespace vantrel {

/// Makes a playlist of media.
class NewPlaylistAndMediaCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    /// The URLs name slots.
    bool init(const MediaLibrary* library, const QList<QString>& urls, int playlist);
};

} // namespace vantrel
