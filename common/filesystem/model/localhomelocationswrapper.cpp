#include "common/filesystem/model/localhomelocationswrapper.h"

#include "common/filesystem/model/localhomelocations.h"

namespace vantrel {

LocalHomeLocationsWrapper::LocalHomeLocationsWrapper(QObject* parent)
    : HomeLocations(parent)
{
    connect(LocalHomeLocations::instance(), &HomeLocations::homeLocationsChanged, this,
            &HomeLocations::homeLocationsChanged);
}

QString LocalHomeLocationsWrapper::homePath() const
{
    return LocalHomeLocations::instance()->homePath();
}

QList<HomeLocation> LocalHomeLocationsWrapper::homeLocations()
{
    return LocalHomeLocations::instance()->homeLocations();
}

} // namespace vantrel
