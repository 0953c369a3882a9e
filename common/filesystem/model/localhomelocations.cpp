#include "common/filesystem/model/localhomelocations.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/mounttable.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace vantrel {

namespace {

// A stick that is plugged in is in the list before anyone has looked for it; the table is a few lines of
// memory.
constexpr int followMs = 1000;

// Its name is its path, which tells two of one label apart.
HomeLocation volumeAt(const QString& path)
{
    return {path, path, 1};
}

QList<HomeLocation> standardFolders()
{
    QList<HomeLocation> folders;
    QStringList known;
    for (const auto kind :
         {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
          QStandardPaths::DownloadLocation, QStandardPaths::MoviesLocation, QStandardPaths::PicturesLocation,
          QStandardPaths::MusicLocation}) {
        const QString path = QStandardPaths::writableLocation(kind);
        if (path.isEmpty() || known.contains(path) || !QDir(path).exists())
            continue;
        known.append(path);
        folders.append({QStandardPaths::displayName(kind), path, 1});
    }
    return folders;
}

} // namespace

LocalHomeLocations* LocalHomeLocations::instance()
{
    static LocalHomeLocations locations;
    return &locations;
}

LocalHomeLocations::LocalHomeLocations(const QString& mountTable, QObject* parent)
    : HomeLocations(parent)
    , m_mountTable(mountTable)
{
    updateHomeLocations();
    connect(&m_timer, &QTimer::timeout, this, &LocalHomeLocations::followVolumes);
    m_timer.start(followMs);
}

QString LocalHomeLocations::homePath() const
{
    return tr("Drives");
}

QList<HomeLocation> LocalHomeLocations::homeLocations()
{
    return m_locations.value_or(QList<HomeLocation>());
}

void LocalHomeLocations::addHomeLocation(const HomeLocation& location)
{
    if (!m_locations || m_locations->contains(location))
        return;
    m_locations->append(location);
    Q_EMIT homeLocationsChanged();
}

void LocalHomeLocations::removeHomeLocation(const HomeLocation& location)
{
    if (m_locations && m_locations->removeOne(location))
        Q_EMIT homeLocationsChanged();
}

void LocalHomeLocations::updateHomeLocations()
{
    QList<HomeLocation> locations{volumeAt(QStringLiteral("/"))};
    locations += standardFolders();
    m_volumes = readVolumes();
    for (const QString& path : m_volumes)
        locations.append(volumeAt(path));
    qCInfo(lcFileSystem) << "Updated home locations on" << homePath() << "- Count:" << locations.size();
    if (m_locations == locations)
        return;
    m_locations = locations;
    Q_EMIT homeLocationsChanged();
}

QStringList LocalHomeLocations::readVolumes()
{
    QFile table(m_mountTable);
    if (!table.open(QIODeviceBase::ReadOnly))
        return m_volumes;
    m_mountText = table.readAll();
    return volumesIn(m_mountText);
}

void LocalHomeLocations::followVolumes()
{
    const QByteArray before = m_mountText;
    const QStringList volumes = readVolumes();
    if (before == m_mountText)
        return;
    const QStringList gone = std::exchange(m_volumes, volumes);
    for (const QString& path : gone) {
        if (!volumes.contains(path))
            removeHomeLocation(volumeAt(path));
    }
    for (const QString& path : volumes) {
        if (!gone.contains(path))
            addHomeLocation(volumeAt(path));
    }
}

} // namespace vantrel
