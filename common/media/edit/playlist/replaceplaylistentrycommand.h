#pragma once

#include "common/command/libraryeditcommand.h"
#include "tarn/media/entryaddress.h"

#include <QList>

namespace vantrel {

/// Puts entries of a playlist in the place of another one, which goes.
class ReplacePlaylistEntryCommand : public LibraryEditCommand
{
    Q_OBJECT

public:
    using LibraryEditCommand::LibraryEditCommand;

    bool init(const MediaLibrary* library, int playlist, const QList<EntryAddress>& addresses,
              const EntryAddress& target);

protected:
    bool hasApi() const override;
};

} // namespace vantrel
