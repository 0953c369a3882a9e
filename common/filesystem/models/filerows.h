#pragma once

#include <QHash>
#include <QString>

#include <vector>

namespace vantrel {

/// A directory or a file as a list shows it: a plain record, so that fifty thousand of them cost little.
struct FileRow
{
    QString name;
    qint64 sizeBytes = 0; // of a file
    bool isDirectory = false;
};

using FileRows = std::vector<FileRow>;

/// What rows are sorted by; directories come first either way.
struct FileSorting
{
    enum class By : int { Name, Size, Type, Duration };

    By by = By::Name;
    Qt::SortOrder order = Qt::AscendingOrder;
    QHash<QString, quint64> durations; // milliseconds, of the names whose duration is known
};

/// Sorts as a reader would: "Clip 2" before "clip 10", names deciding between equals. Any thread.
void sortRows(FileRows& rows, const FileSorting& sorting);

/// How one list becomes another with the least disturbance of what shows it. Indexes are of the old list
/// where rows go and of the new one otherwise, each ascending.
struct RowChange
{
    FileRows rows;             // the new list
    bool isReset = false;      // so much is different that a list may as well begin anew
    std::vector<int> removed;  // of the old list
    std::vector<int> inserted; // of the new list
    std::vector<int> changed;  // of the new list: the same name with another size
};

/// Any thread.
RowChange changeRows(const FileRows& from, FileRows to);

/// The kind of a file by its name, for a column: "MOV" of "Opening.mov"; empty without a suffix.
QString fileKind(const QString& name);

} // namespace vantrel
