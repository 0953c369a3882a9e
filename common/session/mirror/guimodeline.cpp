#include "common/session/mirror/guimodeline.h"

namespace vantrel {

GUIModeline::GUIModeline(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("Modeline"), parent)
{
    cacheProperties();
}

void GUIModeline::postSetObjectHook()
{
    cacheProperties();
}

void GUIModeline::notifyPropertyChangedHook(const std::string&)
{
    Q_EMIT changed();
}

void GUIModeline::cacheProperties()
{
    m_info = {
        .id = object()->findProperty("id"),
        .label = object()->findProperty("label"),
        .width = object()->findProperty("width"),
        .height = object()->findProperty("height"),
        .standard = object()->findProperty("standard"),
        .interlaced = object()->findProperty("interlaced"),
        .refreshRate = object()->findProperty("refreshRate"),
    };
}

} // namespace vantrel
