#include "common/session/mirror/guishowconfiguration.h"

namespace vantrel {

GUIShowConfiguration::GUIShowConfiguration(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("ShowConfiguration"), parent)
{
    cacheProperties();
}

void GUIShowConfiguration::postSetObjectHook()
{
    cacheProperties();
}

void GUIShowConfiguration::cacheProperties()
{
    m_info = {
        .autoSave = object()->findProperty("autoSave"),
        .autoStartShow = object()->findProperty("autoStartShow"),
        .autoStartPlayState = object()->findProperty("autoStartPlayState"),
        .autoStartShowList = object()->findProperty("autoStartShowList"),
        .showName = object()->findProperty("showName"),
        .showModified = object()->findProperty("showModified"),
    };
}

} // namespace vantrel
