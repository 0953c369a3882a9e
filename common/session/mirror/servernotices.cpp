#include "common/session/mirror/servernotices.h"

#include "common/media/address/showntext.h"
#include "common/notification/notificationmanager.h"

#include <algorithm>
#include <utility>

namespace vantrel {

ServerNotices::ServerNotices(Scene* scene, NotificationManager* manager, QObject* parent)
    : QObject(parent)
    , m_scene(scene)
    , m_manager(manager)
{
    m_scene->addChangeCallback(&ServerNotices::onChange, this);
    read();
}

ServerNotices::~ServerNotices()
{
    m_scene->removeChangeCallback(&ServerNotices::onChange, this);
}

void ServerNotices::onChange(Scene* scene, int count, const SceneChange* changes, void* user)
{
    Q_UNUSED(scene);
    const bool concerns = std::any_of(changes, changes + count, [](const SceneChange& change) {
        return change.kind != SceneChange::PropertyChanged ||
               (change.property && change.property->name == "notice");
    });
    if (concerns)
        static_cast<ServerNotices*>(user)->read();
}

void ServerNotices::read()
{
    Object* const system = m_scene->findObject("/device/system");
    const PropertyInfo* const notice = system ? system->findProperty("notice") : nullptr;
    Variant value;
    if (!notice || !system->getProperty(notice, value))
        return; // the scene is being built: what was told stays told
    const QString text = QString::fromStdString(value.asString());
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    const QStringList before = std::exchange(m_told, lines);
    for (const QString& line : lines) {
        if (!before.contains(line))
            m_manager->createNotification(Notification::WarningMessage, tr("The server has trouble"),
                                          shownText(line).toHtmlEscaped());
    }
}

} // namespace vantrel
