#pragma once

#include "common/filesystem/model/homelocations.h"

namespace vantrel {

/// What a declarative view makes to reach the one list of local places.
class LocalHomeLocationsWrapper : public HomeLocations
{
    Q_OBJECT

public:
    explicit LocalHomeLocationsWrapper(QObject* parent = nullptr);

    QString homePath() const override;
    QList<HomeLocation> homeLocations() override;
};

} // namespace vantrel
