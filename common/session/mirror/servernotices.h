#pragma once

#include "tarn/ref.h"
#include "tarn/scene/scene.h"

#include <QObject>
#include <QStringList>

namespace vantrel {

class NotificationManager;

/// Brings what the server has to say to the operator: each line of the system's "notice" becomes a warning
/// when it appears, also when it stands there at the connection. Main thread only.
class ServerNotices : public QObject
{
    Q_OBJECT

public:
    ServerNotices(Scene* scene, NotificationManager* manager, QObject* parent = nullptr);
    ~ServerNotices() override;

private:
    static void onChange(Scene* scene, int count, const SceneChange* changes, void* user);
    void read();

    Ref<Scene> m_scene;
    NotificationManager* m_manager;
    QStringList m_told; // what stands in the scene
};

} // namespace vantrel
