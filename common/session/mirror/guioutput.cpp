#include "common/session/mirror/guioutput.h"

#include "common/session/settings/sessionlogging.h"

namespace vantrel {

namespace {

constexpr const char* names[] = {
#define VANTREL_NAME(type, name, setter) #name,
    VANTREL_OUTPUT_MEMBERS(VANTREL_NAME)
#undef VANTREL_NAME
};

} // namespace

GUIOutput::GUIOutput(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("Output"), parent)
{
    findProperties();
#define VANTREL_TELL(type, name, setter)                                                                     \
    connect(this, &GUIOutput::name##Changed, this, &GUIOutput::screenChanged);
    VANTREL_OUTPUT_FIGURES(VANTREL_TELL)
#undef VANTREL_TELL
    connect(this, &GUIOutput::reset, this, &GUIOutput::screenChanged);
}

ScreenHealth GUIOutput::screen() const
{
    return {.rate = screenRate(),
            .dropped = droppedPictures(),
            .late = latePictures(),
            .decodeLoad = decodeLoad(),
            .paintLoad = paintLoad(),
            .bySoftware = softwareRenderer()};
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
