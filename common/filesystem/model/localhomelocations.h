#pragma once

#include "common/filesystem/model/homelocations.h"

#include <QTimer>

#include <optional>

namespace vantrel {

/// The places of the operator's computer: the whole disk, the home folder, the desktop's standard folders,
/// and every volume from when it is mounted until it goes. One for the process; main thread only.
class LocalHomeLocations : public HomeLocations
{
    Q_OBJECT

public:
    static LocalHomeLocations* instance();
    /// mountTable is the file in which the system keeps its mounts.
    explicit LocalHomeLocations(const QString& mountTable = QStringLiteral("/proc/self/mountinfo"),
                                QObject* parent = nullptr);

    QString homePath() const override;
    QList<HomeLocation> homeLocations() override;
    /// Nothing when there is an equal one.
    void addHomeLocation(const HomeLocation& location);
    /// Nothing when there is none that is equal.
    void removeHomeLocation(const HomeLocation& location);

public Q_SLOTS:
    /// Puts the list together anew.
    void updateHomeLocations();

private:
    QStringList readVolumes();
    void followVolumes();

    QString m_mountTable;
    QByteArray m_mountText;
    QStringList m_volumes;
    QTimer m_timer;
    std::optional<QList<HomeLocation>> m_locations;
};

} // namespace vantrel
