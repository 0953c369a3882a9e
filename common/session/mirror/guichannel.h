#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"

namespace vantrel {

/// The channel that the application drives; only its object is used, as the root of the channel's children.
class GUIChannel : public SceneObjectWrapper
{
    Q_OBJECT

public:
    explicit GUIChannel(QObject* parent = nullptr)
        : SceneObjectWrapper(QStringLiteral("Channel"), parent)
    {
    }
};

} // namespace vantrel
