#pragma once

#include "tarn/media/channelenums.h"

#include <QObject>

namespace vantrel {

/// Tells whether a channel is short of resources, so that nothing more is loaded into it.
class ResourceStatusProvider : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual bool isConstrained(PlaybackViewMode mode) const = 0;

Q_SIGNALS:
    void isConstrainedChanged(vantrel::PlaybackViewMode mode);
};

} // namespace vantrel
