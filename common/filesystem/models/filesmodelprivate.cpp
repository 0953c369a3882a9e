#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/filesmodel_p.h"

namespace vantrel {

namespace {

constexpr std::size_t mostAtOnce = 1000; // rows that are sorted within a frame
constexpr qsizetype mostKnown = 4096;    // files whose metadata is kept
constexpr std::size_t mostAsked = 1000;  // files whose durations are asked for to sort by them
constexpr int resortDelay = 500;         // milliseconds in which further durations may come

/// The way up is no item that somebody could select and remove: it is parentPath().
FileRows rowsOf(const QList<FileSystemDirectory>& directories, const QList<FileSystemFile>& files)
{
    FileRows rows;
    rows.reserve(static_cast<std::size_t>(directories.size() + files.size()));
    for (const FileSystemDirectory& directory : directories) {
        if (directory.name != QLatin1String("..") && directory.name != QLatin1String("."))
            rows.push_back({directory.name, 0, true});
    }
    for (const FileSystemFile& file : files)
        rows.push_back({file.name, file.sizeBytes, false});
    return rows;
}

/// A new one each time: the picture may be another under the same address.
QString thumbnailOf(const FileMetadata& metadata)
{
    const QUrl& media = metadata.thumbnail;
    return media.isEmpty() || media.scheme() == QLatin1String("image") ? media.toString()
                                                                       : thumbnailImageUrl(media);
}

} // namespace

FilesModelPrivate::FilesModelPrivate(FilesModel* model, FileSystem* fileSystem, HomeLocations* homeLocations)
    : m_model(model)
    , m_fileSystem(fileSystem)
    , m_homes(homeLocations)
    , m_isLocal(homeLocations || qobject_cast<LocalFileSystem*>(fileSystem))
{
    m_sorters.setMaxThreadCount(1);
    m_resort.setSingleShot(true);
    m_resort.setInterval(resortDelay);
    connect(&m_resort, &QTimer::timeout, this, [this] { arrange(m_rows); });
    follow();
}

FilesModelPrivate::~FilesModelPrivate()
{
    m_sorters.clear();
    m_sorters.waitForDone();
}

void FilesModelPrivate::follow()
{
    if (m_fileSystem) {
        const FileSystem* from = m_fileSystem;
        connect(from, &FileSystem::isReadyChanged, this, &FilesModelPrivate::onFileSystemReadyChanged);
        connect(from, &FileSystem::isLoadingChanged, this, [this](bool isLoading) {
            if (!isLoading && m_isSkipped)
                onFileSystemReadyChanged(true);
        });
        connect(from, &FileSystem::directoryChanged, this, &FilesModelPrivate::onDirectoryChanged);
        connect(from, &FileSystem::fileChanged, this, &FilesModelPrivate::onFileChanged);
        connect(from, &FileSystem::fileMetadataChanged, this, &FilesModelPrivate::onFileMetadataChanged);
        // It may come from within a call of ours.
        connect(from, &FileSystem::invalidDirectoryPathRequest, this, &FilesModelPrivate::onInvalidPath,
                Qt::QueuedConnection);
    }
    if (m_homes)
        connect(m_homes, &HomeLocations::homeLocationsChanged, this,
                &FilesModelPrivate::onHomeLocationsChanged);
}

void FilesModelPrivate::setDirectoryPath(const QString& path)
{
    if (!m_fileSystem)
        return;
    QString wanted = path;
    if (!m_homes || path != m_homes->homePath()) {
        wanted = normalizePath(path);
        wanted = QStringLiteral("%1%2").arg(wanted, wanted.endsWith(u'/') ? QString() : QStringLiteral("/"));
        if (!m_fileSystem->isValidDirectoryPath(wanted)) {
            qCInfo(lcFileSystem) << "Tried to use invalid path" << wanted << "on source"
                                 << m_fileSystem->fileSystemName();
            qCInfo(lcFileSystem) << "Requested path" << wanted << "is not valid. Reverting back to old path";
            Q_EMIT m_model->pathRefused(wanted);
            return;
        }
    }
    if (wanted == m_path)
        return;
    qCInfo(lcFileSystem) << "Files model is using new directory:" << wanted;
    if (m_isWaiting && !isAtTop())
        m_fileSystem->giveUpListing(m_path);
    m_path = wanted;
    m_isNewPlace = true;
    m_known.clear();
    // What stood here belongs elsewhere, and nobody may act on it under the new path.
    ++m_round;
    reset({});
    reload();
    Q_EMIT m_model->directoryPathChanged(m_path);
}

void FilesModelPrivate::reload()
{
    if (!m_fileSystem || m_path.isEmpty())
        return;
    qCDebug(lcFileSystem) << "Reloading files model for path" << m_path << "...";
    if (m_fileSystem->isLoading()) {
        qCInfo(lcFileSystem) << "Skipping model reload since file system" << m_fileSystem->fileSystemName()
                             << "is loading";
        m_isSkipped = true;
        // A transfer can take an hour: what is known of the directory shows meanwhile.
        if (!m_isNewPlace || read())
            return;
        setWaiting(true);
        return;
    }
    m_isSkipped = false;
    if (!read())
        setWaiting(m_isNewPlace);
}

/// False when the file system has to ask first.
bool FilesModelPrivate::read()
{
    if (isAtTop()) {
        readPlaces();
        return true;
    }
    QList<FileSystemDirectory> directories;
    QList<FileSystemFile> files;
    const bool knowsDirectories = m_fileSystem->getDirectories(m_path, directories);
    const bool knowsFiles = m_fileSystem->getFiles(m_path, files);
    if (!knowsDirectories || !knowsFiles)
        return false;
    qCDebug(lcFileSystem) << "File model for path" << m_path << "has" << directories.size() << "directories,"
                          << files.size() << "files and" << 0 << "home locations";
    const auto count = static_cast<std::size_t>(directories.size() + files.size());
    arrange(count, [directories = std::move(directories), files = std::move(files)] {
        return rowsOf(directories, files);
    });
    return true;
}

void FilesModelPrivate::readPlaces()
{
    QList<HomeLocation> places;
    for (const HomeLocation& place : m_homes->homeLocations()) {
        if (place.type == 1)
            places.append(place);
    }
    qCDebug(lcFileSystem) << "File model is using drives on home location. Count:" << places.size();
    FileRows rows;
    for (const HomeLocation& place : std::as_const(places))
        rows.push_back({place.name, 0, true});
    ++m_round;
    m_places = places;
    reset(std::move(rows));
    setWaiting(false);
    m_isNewPlace = false;
    m_lastPath = m_path;
}

void FilesModelPrivate::arrange(const FileRows& rows)
{
    arrange(rows.size(), [rows] { return rows; });
}

/// Makes the rows, sorts and shows them: at once, or later when they are many, without this thread.
void FilesModelPrivate::arrange(std::size_t count, std::function<FileRows()> rows)
{
    const int round = ++m_round;
    auto work = [from = m_rows, sorting = m_sorting, rows = std::move(rows)] {
        FileRows to = rows();
        sortRows(to, sorting);
        return changeRows(from, std::move(to));
    };
    if (count <= mostAtOnce && m_rows.size() <= mostAtOnce) {
        apply(work());
        return;
    }
    setWaiting(m_isNewPlace);
    m_sorters.start([this, round, work = std::move(work)] {
        auto change = std::make_shared<RowChange>(work());
        // The destructor waits for this: the object is still here.
        QMetaObject::invokeMethod(
            this,
            [this, round, change] {
                if (round == m_round)
                    apply(std::move(*change));
            },
            Qt::QueuedConnection);
    });
}

void FilesModelPrivate::apply(RowChange change)
{
    const auto before = m_rows.size();
    if (change.isReset) {
        reset(std::move(change.rows));
    } else {
        removeRows(change.removed);
        insertRows(change);
        for (const int row : change.changed) {
            const auto place = static_cast<std::size_t>(row);
            m_rows[place] = change.rows[place];
            m_known.remove(m_rows[place].name);
            tellRow(row);
        }
        if (before != m_rows.size())
            Q_EMIT m_model->countChanged();
    }
    m_isNewPlace = false;
    m_lastPath = m_path;
    setWaiting(false);
    askForDurations();
}

void FilesModelPrivate::reset(FileRows rows)
{
    m_model->beginResetModel();
    m_rows = std::move(rows);
    m_model->endResetModel();
    Q_EMIT m_model->countChanged();
}

void FilesModelPrivate::removeRows(const std::vector<int>& rows)
{
    for (std::size_t end = rows.size(); end > 0;) {
        std::size_t begin = end - 1;
        while (begin > 0 && rows[begin - 1] == rows[begin] - 1)
            --begin;
        const int first = rows[begin];
        const int last = rows[end - 1];
        m_model->beginRemoveRows({}, first, last);
        for (int row = first; row <= last; ++row)
            m_known.remove(m_rows[static_cast<std::size_t>(row)].name);
        m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
        m_model->endRemoveRows();
        end = begin;
    }
}

void FilesModelPrivate::insertRows(const RowChange& change)
{
    const std::vector<int>& rows = change.inserted;
    for (std::size_t begin = 0; begin < rows.size();) {
        std::size_t end = begin + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1)
            ++end;
        const int first = rows[begin];
        const int last = rows[end - 1];
        m_model->beginInsertRows({}, first, last);
        m_rows.insert(m_rows.begin() + first, change.rows.begin() + first, change.rows.begin() + last + 1);
        m_model->endInsertRows();
        begin = end;
    }
}

void FilesModelPrivate::setWaiting(bool isWaiting)
{
    if (m_isWaiting == isWaiting)
        return;
    m_isWaiting = isWaiting;
    Q_EMIT m_model->isWaitingChanged();
}

void FilesModelPrivate::sortBy(int role)
{
    FileSorting::By by = FileSorting::By::Name;
    if (role == FilesModel::SizeRole)
        by = FileSorting::By::Size;
    else if (role == FilesModel::TypeTextRole)
        by = FileSorting::By::Type;
    else if (role == FilesModel::DurationValueMsRole)
        by = FileSorting::By::Duration;
    const bool turns = by == m_sorting.by && m_sorting.order == Qt::AscendingOrder;
    m_sorting.by = by;
    m_sorting.order = turns ? Qt::DescendingOrder : Qt::AscendingOrder;
    Q_EMIT m_model->sortingChanged();
    if (!isAtTop())
        arrange(m_rows);
}

void FilesModelPrivate::refresh()
{
    m_known.clear();
    if (!m_rows.empty())
        Q_EMIT m_model->dataChanged(m_model->index(0), m_model->index(static_cast<int>(m_rows.size()) - 1));
    reload();
}

QString FilesModelPrivate::pathOf(const FileRow& row, int index) const
{
    return isAtTop() ? m_places.value(index).path : createJoinedPath(m_path, row.name, row.isDirectory);
}

const FilesModelPrivate::Known& FilesModelPrivate::known(const FileRow& row, int index)
{
    if (const auto found = m_known.constFind(row.name); found != m_known.cend())
        return *found;
    if (m_known.size() >= mostKnown)
        m_known.clear();
    m_known.insert(row.name, {});
    requestMetadata(pathOf(row, index), index);
    return m_known[row.name];
}

bool FilesModelPrivate::requestMetadata(const QString& path, int row)
{
    FileMetadata metadata;
    if (!m_fileSystem || m_isLocal || !m_fileSystem->requestMetadata(path, metadata))
        return false;
    keep(m_rows[static_cast<std::size_t>(row)].name, metadata);
    return true;
}

void FilesModelPrivate::keep(const QString& name, const FileMetadata& metadata)
{
    Known& known = m_known[name];
    known.thumbnail = thumbnailOf(metadata);
    known.metadata = metadata;
    if (m_sorting.by != FileSorting::By::Duration || m_sorting.durations.value(name) == metadata.durationMs)
        return;
    m_sorting.durations.insert(name, metadata.durationMs);
    if (!m_resort.isActive())
        m_resort.start();
}

/// Rows that nobody has looked at have their place by their duration as well.
void FilesModelPrivate::askForDurations()
{
    if (m_sorting.by != FileSorting::By::Duration) {
        m_sorting.durations.clear();
        return;
    }
    for (std::size_t row = 0; row < std::min(m_rows.size(), mostAsked); ++row) {
        const FileRow& file = m_rows[row];
        FileMetadata metadata;
        if (file.isDirectory || m_isLocal || !m_fileSystem || m_known.contains(file.name))
            continue;
        m_known.insert(file.name, {}); // what is told later is kept of known ones
        if (m_fileSystem->requestMetadataAlone(pathOf(file, static_cast<int>(row)), metadata))
            keep(file.name, metadata);
    }
    for (auto file = m_known.cbegin(); file != m_known.cend(); ++file) {
        if (file->metadata.durationMs > 0 && !m_sorting.durations.contains(file.key())) {
            m_sorting.durations.insert(file.key(), file->metadata.durationMs);
            m_resort.start();
        }
    }
}

void FilesModelPrivate::tellRow(int row)
{
    const QModelIndex index = m_model->index(row);
    Q_EMIT m_model->dataChanged(index, index);
}

void FilesModelPrivate::onFileSystemReadyChanged(bool isReady)
{
    if (!isReady || !m_fileSystem)
        return;
    qCInfo(lcFileSystem) << "Files system" << m_fileSystem->fileSystemName()
                         << "is ready. Reloading model...";
    reload();
}

void FilesModelPrivate::onDirectoryChanged(const FileSystemDirectory& directory)
{
    if (!isAtTop() && isSamePath(directory.fullPath, m_path))
        reload();
}

void FilesModelPrivate::onFileChanged(const FileSystemFile& file)
{
    if (isAtTop() || !isSamePath(file.directory.fullPath, m_path))
        return;
    const int row = m_model->rowOf(file.name);
    if (row < 0) {
        qCDebug(lcFileSystem) << "File" << file.getFullPath()
                              << "changed but it wasn't part of the model data.";
        return;
    }
    FileRow& shown = m_rows[static_cast<std::size_t>(row)];
    if (file.sizeBytes >= 0)
        shown.sizeBytes = file.sizeBytes;
    m_known.remove(shown.name);
    tellRow(row);
}

void FilesModelPrivate::onFileMetadataChanged(const FileSystemFile& file, const FileMetadata& metadata)
{
    if (isAtTop() || !isSamePath(file.directory.fullPath, m_path) || !m_known.contains(file.name))
        return;
    keep(file.name, metadata);
    if (const int row = m_model->rowOf(file.name); row >= 0)
        tellRow(row);
}

void FilesModelPrivate::onHomeLocationsChanged()
{
    if (!m_homes || !m_fileSystem)
        return;
    qCInfo(lcFileSystem) << "Home locations on" << m_fileSystem->fileSystemName()
                         << "has changed. Count:" << m_homes->homeLocations().size();
    if (isAtTop())
        reload();
}

void FilesModelPrivate::onInvalidPath(const QString& path)
{
    if (!isSamePath(path, m_path) || isAtTop() || !m_fileSystem)
        return;
    Q_EMIT m_model->pathRefused(m_path);
    goBack();
}

/// To where something could be read last, or to the nearest directory above that is there.
void FilesModelPrivate::goBack()
{
    QString path = m_isNewPlace && !m_lastPath.isEmpty() ? m_lastPath : getParentPath(m_path);
    while (path != m_path && !m_fileSystem->isValidDirectoryPath(path) && path != getParentPath(path))
        path = getParentPath(path);
    if (isSamePath(path, m_path) || !m_fileSystem->isValidDirectoryPath(path))
        path = m_homes ? m_homes->homePath() : m_fileSystem->defaultRootPath();
    if (isSamePath(path, m_path))
        setWaiting(false); // the top itself cannot be read: an empty list, and the next change reads again
    else
        setDirectoryPath(path);
}

} // namespace vantrel
