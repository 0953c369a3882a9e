#include "common/filesystem/models/filesmodel.h"

#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/filesmodel_p.h"
#include "common/media/address/showntext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace vantrel {

namespace {

/// "1:02:03" or "2:03", in whole seconds.
QString durationText(quint64 milliseconds)
{
    const quint64 seconds = (milliseconds + 500) / 1000;
    const QString tail = QStringLiteral("%1:%2")
                             .arg(seconds / 60 % 60, seconds >= 3600 ? 2 : 1, 10, QLatin1Char('0'))
                             .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    return seconds >= 3600 ? QStringLiteral("%1:%2").arg(seconds / 3600).arg(tail) : tail;
}

} // namespace

FilesModel::FilesModel(FileSystem* fileSystem, HomeLocations* homeLocations, QObject* parent)
    : QAbstractListModel(parent)
    , d(std::make_unique<FilesModelPrivate>(this, fileSystem, homeLocations))
{
}

FilesModel::~FilesModel() = default;

QString FilesModel::directoryPath() const
{
    return d->m_path;
}

void FilesModel::setDirectoryPath(const QString& path)
{
    d->setDirectoryPath(path);
}

FileSystem* FilesModel::fileSystem() const
{
    return d->m_fileSystem;
}

QString FilesModel::parentPath() const
{
    if (d->m_path.isEmpty() || d->isAtTop())
        return {};
    if (d->m_path == QLatin1String("/"))
        return d->m_homes ? d->m_homes->homePath() : QString();
    return getParentPath(d->m_path);
}

bool FilesModel::isWaiting() const
{
    return d->m_isWaiting;
}

bool FilesModel::isAtTop() const
{
    return d->isAtTop();
}

bool FilesModel::isLocal() const
{
    return d->m_isLocal;
}

QString FilesModel::kind() const
{
    return isLocal() ? QStringLiteral("local") : QStringLiteral("server");
}

int FilesModel::count() const
{
    return static_cast<int>(d->m_rows.size());
}

int FilesModel::sortRole() const
{
    switch (d->m_sorting.by) {
    case FileSorting::By::Size:
        return SizeRole;
    case FileSorting::By::Type:
        return TypeTextRole;
    case FileSorting::By::Duration:
        return DurationValueMsRole;
    case FileSorting::By::Name:
        break;
    }
    return NameRole;
}

bool FilesModel::isDescending() const
{
    return d->m_sorting.order == Qt::DescendingOrder;
}

int FilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FilesModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const FileRow& row = d->m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return row.name;
    case ShownNameRole:
        return shownText(row.name);
    case NumberRole:
        return index.row() + 1;
    case IsDirectoryRole:
        return row.isDirectory;
    case AbsolutePathRole:
        return d->pathOf(row, index.row());
    case SizeRole:
        return row.sizeBytes;
    case SizeTextRole:
        return row.isDirectory ? QString() : fileSizeText(row.sizeBytes);
    case TypeTextRole:
        return row.isDirectory ? tr("Folder") : shownText(fileKind(row.name));
    default:
        return d->metadataValue(index.row(), role);
    }
}

/// Of a row's metadata, which is asked for with the first of them.
QVariant FilesModelPrivate::metadataValue(int index, int role)
{
    if (role < FilesModel::ThumbnailRole || role > FilesModel::MediaTypeRole)
        return {};
    const FileRow& row = m_rows[static_cast<std::size_t>(index)];
    static const Known unknown;
    const Known& file = row.isDirectory ? unknown : known(row, index);
    const FileMetadata& metadata = file.metadata;
    switch (role) {
    case FilesModel::ThumbnailRole:
        return file.thumbnail;
    case FilesModel::DurationTextRole:
        return metadata.durationMs == 0 ? QStringLiteral("-") : durationText(metadata.durationMs);
    case FilesModel::DurationValueMsRole:
        return metadata.durationMs;
    case FilesModel::DurationValueSecRole:
        return static_cast<double>(metadata.durationMs) / 1000.0;
    case FilesModel::VideoCodecRole:
        return metadata.videoCodec;
    case FilesModel::IsPlayableRole:
        return metadata.isPlayable;
    case FilesModel::MediaStateRole:
        return static_cast<int>(metadata.mediaState);
    case FilesModel::MediaCaveatsRole:
        return QStringList(metadata.mediaCaveats.cbegin(), metadata.mediaCaveats.cend());
    case FilesModel::MediaTypeRole:
        return static_cast<int>(metadata.mediaType);
    default:
        return {};
    }
}

QHash<int, QByteArray> FilesModel::roleNames() const
{
    return {
        {NameRole, "name"},
        {NumberRole, "number"},
        {IsDirectoryRole, "isDirectory"},
        {AbsolutePathRole, "absolutePath"},
        {SizeRole, "size"},
        {ThumbnailRole, "thumbnail"},
        {DurationTextRole, "durationText"},
        {DurationValueMsRole, "durationMs"},
        {DurationValueSecRole, "durationSec"},
        {VideoCodecRole, "videoCodec"},
        {IsPlayableRole, "isPlayable"},
        {MediaStateRole, "mediaState"},
        {MediaCaveatsRole, "mediaCaveats"},
        {SizeTextRole, "sizeText"},
        {TypeTextRole, "typeText"},
        {ShownNameRole, "shownName"},
        {MediaTypeRole, "mediaType"},
    };
}

void FilesModel::sortBy(int role)
{
    d->sortBy(role);
}

void FilesModel::refresh()
{
    d->refresh();
}

QVariantList FilesModel::breadcrumbs() const
{
    QVariantList crumbs;
    const auto add = [&crumbs](const QString& name, const QString& path) {
        crumbs.append(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("path"), path}});
    };
    if (d->m_homes)
        add(d->m_homes->homePath(), d->m_homes->homePath());
    if (d->m_path.isEmpty() || d->isAtTop())
        return crumbs;
    add(isLocal() ? QStringLiteral("/") : tr("Server"), QStringLiteral("/"));
    QString path = QStringLiteral("/");
    const QStringList names = d->m_path.split(u'/', Qt::SkipEmptyParts);
    for (const QString& name : names) {
        path = createJoinedPath(path, name, true);
        add(shownText(name), path);
    }
    return crumbs;
}

QVariantMap FilesModel::get(int row) const
{
    const QModelIndex place = index(row);
    if (!place.isValid())
        return {};
    return {{QStringLiteral("name"), place.data(NameRole)},
            {QStringLiteral("shownName"), place.data(ShownNameRole)},
            {QStringLiteral("isDirectory"), place.data(IsDirectoryRole)},
            {QStringLiteral("absolutePath"), place.data(AbsolutePathRole)},
            {QStringLiteral("size"), place.data(SizeRole)}};
}

int FilesModel::rowOf(const QString& name) const
{
    const auto found = std::ranges::find(d->m_rows, name, &FileRow::name);
    return found == d->m_rows.end() ? -1 : static_cast<int>(found - d->m_rows.begin());
}

int FilesModel::findRow(const QString& text, int from) const
{
    const int rows = count();
    for (int step = 0; step < rows; ++step) {
        const int row = (std::max(from, 0) + step) % rows;
        if (d->m_rows[static_cast<std::size_t>(row)].name.startsWith(text, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

qint64 FilesModel::bytesOf(const QList<int>& rows) const
{
    qint64 bytes = 0;
    for (const int row : rows) {
        if (row >= 0 && row < count())
            bytes += d->m_rows[static_cast<std::size_t>(row)].sizeBytes;
    }
    return bytes;
}

QVariantMap FilesModel::mimeOf(const QList<int>& rows) const
{
    QJsonArray entries;
    for (const int row : rows) {
        if (row < 0 || row >= count())
            continue;
        const FileRow& file = d->m_rows[static_cast<std::size_t>(row)];
        const auto known = d->m_known.constFind(file.name);
        const bool isKnown = known != d->m_known.cend();
        const bool isTold = isKnown && known->metadata.isTold(); // else it counts as unplayable nowhere
        const double seconds = isKnown ? static_cast<double>(known->metadata.durationMs) / 1000.0 : 0.0;
        entries.append(QJsonObject{{QStringLiteral("path"), d->pathOf(file, row)},
                                   {QStringLiteral("fileSystem"), kind()},
                                   {QStringLiteral("name"), file.name},
                                   {QStringLiteral("duration"), seconds},
                                   {QStringLiteral("isDirectory"), file.isDirectory},
                                   {QStringLiteral("isPlayable"), isKnown && known->metadata.isPlayable},
                                   {QStringLiteral("isKnown"), isTold}});
    }
    if (entries.isEmpty())
        return {};
    return {{QStringLiteral("application/type"), QStringLiteral("media")},
            {QStringLiteral("application/json"),
             QString::fromUtf8(QJsonDocument(entries).toJson(QJsonDocument::Compact))}};
}

} // namespace vantrel
