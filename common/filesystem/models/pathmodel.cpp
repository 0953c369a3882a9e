#include "common/filesystem/models/pathmodel.h"

#include "common/filesystem/model/pathhelpers.h"
#include "common/media/address/showntext.h"

#include <QDir>
#include <QStandardPaths>

namespace vantrel {

PathModel::PathModel(FileSystem* fileSystem, QObject* parent)
    : QAbstractListModel(parent)
    , m_fileSystem(fileSystem)
{
}

int PathModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant PathModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QString& path = m_paths[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case PathRole:
        return path;
    case NameRole:
        return nameOf(path);
    case IconRole:
        return isSamePath(path, QDir::homePath()) ? QStringLiteral("home") : QStringLiteral("folder");
    default:
        return {};
    }
}

QHash<int, QByteArray> PathModel::roleNames() const
{
    return {{PathRole, "path"}, {NameRole, "name"}, {IconRole, "icon"}};
}

void PathModel::append(QString path)
{
    if (path.isEmpty() || m_paths.contains(path))
        return;
    beginInsertRows({}, count(), count());
    m_paths.append(path);
    endInsertRows();
    Q_EMIT countChanged();
}

void PathModel::appendStandardPlaces()
{
    using Place = QStandardPaths::StandardLocation;
    for (const Place place :
         {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
          QStandardPaths::DownloadLocation, QStandardPaths::MoviesLocation, QStandardPaths::MusicLocation,
          QStandardPaths::PicturesLocation}) {
        const QString path = QStandardPaths::writableLocation(place);
        if (!path.isEmpty() && QDir(path).exists())
            append(normalizePath(path));
    }
}

QString PathModel::nameOf(const QString& path) const
{
    if (isSamePath(path, QDir::homePath()))
        return tr("Home");
    return path == QLatin1String("/") && m_fileSystem ? m_fileSystem->fileSystemName()
                                                      : shownText(getNameInPath(path));
}

} // namespace vantrel
