#pragma once

#include "common/media/edit/playlist/importplaylistcommand.h"
#include "util/csvreader.h"

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QString>

#include <map>

class QIODevice;

namespace vantrel {

class MediaLibrary;

/// A playlist as a table in a text file: its first line names the columns "address", "name", "media",
/// "duration", "transition", "end action" and "transition duration"; times are seconds. Name and duration are
/// there for people: they are the slot's.
class PlaylistCsv
{
    Q_DECLARE_TR_FUNCTIONS(PlaylistCsv)

public:
    PlaylistCsv() = delete;

    enum Column {
        Address,
        Name,
        Media,
        Duration,
        Transition,
        EndActionText,
        TransitionDuration,
        ColumnCount
    };
    static const char* title(Column column);

    /// In RFC 4180's form, UTF-8. False when there is no such list or the device takes no more; error is then
    /// a sentence.
    static bool write(QIODevice& device, const MediaLibrary& library, int playlist, QString* error);
};

/// Reads such a file piece by piece and tells what it would become, line by line, before anything is changed.
/// Columns may stand in any order; "address" and "media" must be there. The library is looked at while it is
/// read: it must outlive the calls. Plain code for one thread.
class PlaylistCsvImport
{
    Q_DECLARE_TR_FUNCTIONS(PlaylistCsvImport)

public:
    static constexpr qint64 maxBytes = 16 * 1024 * 1024; // 100,000 entries and more
    static constexpr int maxProblems = 1000;             // that are listed; all are counted

    /// What a line says that cannot be taken.
    struct Problem
    {
        int line = 0;
        QString text; // a sentence
    };

    explicit PlaylistCsvImport(const MediaLibrary& library);
    Q_DISABLE_COPY_MOVE(PlaylistCsvImport)

    /// Reads for about so many milliseconds. False when nothing is left to be read: entries() and the others
    /// are what there is. The device must be open for reading.
    bool readSome(QIODevice& device, int milliseconds);

    /// Why the file as a whole is none; empty for one that is.
    const QString& refusal() const { return m_refusal; }
    /// In address order.
    ImportPlaylistCommand::Entries entries() const;
    const QList<Problem>& problems() const { return m_problems; }
    /// Lines; one problem may be of several.
    int problemCount() const { return m_problemCount; }
    /// Problems that are counted and not listed.
    int unlistedCount() const { return m_unlistedCount; }
    /// For progress.
    qint64 bytesRead() const { return m_bytes; }

private:
    struct Line
    {
        int number = 0;
        PlaylistEntry entry;
    };

    void take(CsvReader::Record&& record);
    void takeTitles(const CsvReader::Record& record);
    QString takeEntry(const CsvReader::Record& record);
    QString readMedia(const QString& text, PlaylistEntry& entry) const;
    static QString readTransition(const QString& text, PlaylistEntry& entry);
    static QString readEndAction(const QString& text, PlaylistEntry& entry);
    static QString readTransitionDuration(const QString& text, PlaylistEntry& entry);
    QString field(const CsvReader::Record& record, PlaylistCsv::Column column) const;
    void refuse(const QString& why);

    const MediaLibrary& m_library;
    CsvReader m_reader;
    bool m_hasTitles = false;
    bool m_isFinished = false;
    int m_places[PlaylistCsv::ColumnCount]; // of the columns in a record; -1 for one that is not there
    std::map<EntryAddress, Line> m_lines;
    QList<Problem> m_problems;
    int m_problemCount = 0;
    int m_unlistedCount = 0;
    qint64 m_bytes = 0;
    QString m_refusal;
};

} // namespace vantrel
