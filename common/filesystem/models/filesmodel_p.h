#pragma once

#include "common/filesystem/model/filemetadata.h"
#include "common/filesystem/model/homelocations.h"
#include "common/filesystem/models/filerows.h"
#include "common/filesystem/models/filesmodel.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QTimer>

#include <functional>

namespace vantrel {

/// What FilesModel knows and does; lives and dies with it.
class FilesModelPrivate : public QObject
{
    Q_OBJECT

public:
    /// What was asked of a file; until the answer is here the defaults stand for it.
    struct Known
    {
        FileMetadata metadata;
        QString thumbnail; // its URL, made once: each that is made is another
    };

    FilesModelPrivate(FilesModel* model, FileSystem* fileSystem, HomeLocations* homeLocations);
    ~FilesModelPrivate() override;

    void setDirectoryPath(const QString& path);
    void reload();
    void sortBy(int role);
    void refresh();
    bool isAtTop() const { return m_homes && m_path == m_homes->homePath(); }
    QString pathOf(const FileRow& row, int index) const;
    const Known& known(const FileRow& row, int index);
    QVariant metadataValue(int index, int role);

    FilesModel* m_model;
    QPointer<FileSystem> m_fileSystem;
    QPointer<HomeLocations> m_homes;
    bool m_isLocal;
    QString m_path;
    FileRows m_rows;
    QList<HomeLocation> m_places; // of the rows at the top
    FileSorting m_sorting;
    bool m_isWaiting = false;
    QHash<QString, Known> m_known;

public Q_SLOTS:
    void onFileSystemReadyChanged(bool isReady);
    void onDirectoryChanged(const vantrel::FileSystemDirectory& directory);
    void onFileChanged(const vantrel::FileSystemFile& file);
    void onFileMetadataChanged(const vantrel::FileSystemFile& file, const vantrel::FileMetadata& metadata);
    void onHomeLocationsChanged();
    void onInvalidPath(const QString& path);

private:
    void follow();
    bool requestMetadata(const QString& path, int row);
    bool read();
    void readPlaces();
    void arrange(const FileRows& rows);
    void arrange(std::size_t count, std::function<FileRows()> rows);
    void apply(RowChange change);
    void reset(FileRows rows);
    void removeRows(const std::vector<int>& rows);
    void insertRows(const RowChange& change);
    void setWaiting(bool isWaiting);
    void goBack();
    void keep(const QString& name, const FileMetadata& metadata);
    void tellRow(int row);
    void askForDurations();

    QString m_lastPath; // where something could be read

    bool m_isNewPlace = true; // nothing of the directory has been shown yet
    bool m_isSkipped = false; // a reading waits for the file system
    QThreadPool m_sorters;
    int m_round = 0; // of the readings; a sort of an older one is dropped
    QTimer m_resort; // durations came while they are what rows are sorted by
};

} // namespace vantrel
