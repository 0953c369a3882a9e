#include "common/session/mirror/guimapping.h"

namespace vantrel {

GUIMapping::GUIMapping(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("GpuMapping"), parent)
{
    cacheProperties();
}

void GUIMapping::postSetObjectHook()
{
    cacheProperties();
}

void GUIMapping::cacheProperties()
{
    m_info = {
        .target = object()->findProperty("target"),
        .scaling = object()->findProperty("defaultScaleMode"),
        .backgroundColor = object()->findProperty("backgroundColor"),
        .linearTransitions = object()->findProperty("linearTransitions"),
    };
}

} // namespace vantrel
