#pragma once

#include "common/media/edit/playlist/importplaylistcommand.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace vantrel {

class MediaLibrary;

/// A playlist as a table in a text file, one entry a line: address, name, media, duration, transition, its
/// time, end action. The first line names the columns; of those only "address" and "media" are needed, in any
/// order. Commas, semicolons or tabs separate, quotes hold what would be mistaken for them (RFC 4180). Plain
/// functions; read() on any thread.
class PlaylistCsv
{
public:
    /// What a file may hold, in bytes: many times a long cue list.
    static constexpr qint64 largestFile = 16 * 1024 * 1024;

    /// A line that cannot be taken, counted from 1, and why, as a sentence.
    struct Fault
    {
        qsizetype line;
        QString reason;
    };
    struct Reading
    {
        ImportPlaylistCommand::Entries entries; // by ascending address
        QList<qsizetype> lines;                 // that each is from
        QList<Fault> faults;
    };

    static Reading read(const QByteArray& text);
    /// Moves the entries whose media the library does not have to the faults.
    static void checkMedia(Reading& reading, const MediaLibrary& library);
    /// UTF-8; empty for a playlist that the library does not have.
    static QByteArray write(const MediaLibrary& library, int playlist);
};

} // namespace vantrel
