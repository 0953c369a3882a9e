#include "common/session/mirror/guioutput.h"

#include "common/session/settings/sessionlogging.h"

namespace vantrel {

namespace {

constexpr const char* names[] = {
#define VANTREL_NAME(type, name, setter) #name,
    VANTREL_OUTPUT_PROPERTIES(VANTREL_NAME)
#undef VANTREL_NAME
};

} // namespace

GUIOutput::GUIOutput(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("Output"), parent)
{
    findProperties();
}

void GUIOutput::postSetObjectHook()
{
    findProperties();
}

void GUIOutput::findProperties()
{
    static_assert(std::size(names) == Index::count);
    for (int i = 0; i < Index::count; ++i) {
        m_info[i] = object()->findProperty(names[i]);
        if (!m_info[i])
            qCWarning(lcSession) << "The scene's output has no property" << names[i];
    }
}

} // namespace vantrel
