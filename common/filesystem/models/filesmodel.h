#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QAbstractListModel>
#include <QVariant>

#include <memory>

namespace vantrel {

class FilesModelPrivate;
class HomeLocations;

/// The content of one directory of one file system: directories first, then files, sorted. What a file system
/// does not know yet comes when it tells of it; metadata is asked for when a row first shows it. The session
/// owns it; main thread only, large lists are sorted on a worker thread.
class FilesModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QString directoryPath READ directoryPath WRITE setDirectoryPath NOTIFY directoryPathChanged)
    Q_PROPERTY(vantrel::FileSystem* fileSystem READ fileSystem CONSTANT)
    /// Where the way up leads; empty at the top.
    Q_PROPERTY(QString parentPath READ parentPath NOTIFY directoryPathChanged)
    /// Whether what the rows are is not known yet.
    Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY isWaitingChanged)
    /// Whether the rows are the top places (drives, volumes) in place of a directory.
    Q_PROPERTY(bool isAtTop READ isAtTop NOTIFY directoryPathChanged)
    Q_PROPERTY(bool isLocal READ isLocal CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int sortRole READ sortRole NOTIFY sortingChanged)
    Q_PROPERTY(bool isDescending READ isDescending NOTIFY sortingChanged)

public:
    enum FileModelRoles {
        NameRole = 257,
        NumberRole = 258, // from 1
        IsDirectoryRole = 259,
        AbsolutePathRole = 260,
        SizeRole = 261, // bytes
        ThumbnailRole = 262,
        DurationTextRole = 263,
        DurationValueMsRole = 264,
        DurationValueSecRole = 265,
        VideoCodecRole = 266,
        IsPlayableRole = 267,
        MediaStateRole = 268,
        MediaCaveatsRole = 269, // texts
        SizeTextRole = 270,
        TypeTextRole = 271,
        ShownNameRole = 272, // without what could make one name look like another
        MediaTypeRole = 273,
    };
    Q_ENUM(FileModelRoles)

    /// Both must outlive this. homeLocations: the top places of a local side; null on a side without them.
    explicit FilesModel(FileSystem* fileSystem, HomeLocations* homeLocations = nullptr,
                        QObject* parent = nullptr);
    ~FilesModel() override;

    QString directoryPath() const;
    /// A path that the file system rejects is logged and changes nothing.
    void setDirectoryPath(const QString& path);
    FileSystem* fileSystem() const;
    QString parentPath() const;
    bool isWaiting() const;
    bool isAtTop() const;
    bool isLocal() const;
    int count() const;
    int sortRole() const;
    bool isDescending() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Sorts by NameRole, SizeRole, TypeTextRole or DurationValueMsRole; by the role in force: the other way
    /// round.
    Q_INVOKABLE void sortBy(int role);
    /// Reads the directory anew, metadata included.
    Q_INVOKABLE void refresh();
    /// The way to the directory from the top: maps with "name" and "path".
    Q_INVOKABLE QVariantList breadcrumbs() const;
    Q_INVOKABLE QVariantMap get(int row) const;
    /// -1 when the directory has no such name.
    Q_INVOKABLE int rowOf(const QString& name) const;
    /// The next row from a row on, round the end, whose name begins with the text; -1 for none.
    Q_INVOKABLE int findRow(const QString& text, int from) const;
    /// The bytes of the files among the rows.
    Q_INVOKABLE qint64 bytesOf(const QList<int>& rows) const;
    /// The payload of a drag of the rows: "application/type" and "application/json".
    Q_INVOKABLE QVariantMap mimeOf(const QList<int>& rows) const;
    /// The name with which a file system goes in such a payload: "local" or "server".
    QString kind() const;

Q_SIGNALS:
    void directoryPathChanged(QString path);
    void isWaitingChanged();
    void countChanged();
    void sortingChanged();
    /// The operator went where nothing can be read; the model is back where it was.
    void pathRefused(QString path);

private:
    friend class FilesModelPrivate;
    std::unique_ptr<FilesModelPrivate> d;
};

} // namespace vantrel
