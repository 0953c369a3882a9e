#pragma once

#include "common/filesystem/model/homelocation.h"

#include <QList>
#include <QObject>

namespace vantrel {

/// The places at the top of a file system. Main thread only.
class HomeLocations : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString homePath READ homePath CONSTANT)
    Q_PROPERTY(QList<vantrel::HomeLocation> homeLocations READ homeLocations NOTIFY homeLocationsChanged)

public:
    using QObject::QObject;

    /// Not a path but the name of the pseudo directory that shows the places.
    virtual QString homePath() const = 0;
    virtual QList<HomeLocation> homeLocations() = 0;

Q_SIGNALS:
    void homeLocationsChanged();
};

} // namespace vantrel
