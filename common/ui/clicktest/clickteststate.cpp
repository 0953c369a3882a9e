#include "common/ui/clicktest/clickteststate.h"

#include "common/session/session.h"
#include "common/session/settings/keymap.h"
#include "common/ui/keyboard/hotkeys.h"
#include "tarn/json/json.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"

#include <QJsonObject>
#include <QUndoStack>

namespace vantrel::clicktest {

namespace {

QJsonObject keymapJson(const Hotkeys* hotkeys)
{
    QJsonObject json;
    for (const KeyAction& action : keyActions())
        json.insert(action.name, hotkeys->mapping(action.name).toString(QKeySequence::PortableText));
    return json;
}

} // namespace

QJsonObject stateJson()
{
    const Session* session = Session::instance();
    if (!session)
        return {};
    QJsonObject json;
    json.insert(QLatin1String("connected"), session->isConnected());
    if (const QUndoStack* stack = session->getQUndoStack()) {
        json.insert(QLatin1String("undoCount"), stack->count());
        json.insert(QLatin1String("undoIndex"), stack->index());
    }
    if (const Hotkeys* hotkeys = session->hotkeys())
        json.insert(QLatin1String("keymap"), keymapJson(hotkeys));
    if (const MediaLibrary* library = session->mediaLibrary())
        json.insert(QLatin1String("library"), QString::fromStdString(library->toJson().toString()));
    if (const Scene* scene = session->getScene())
        json.insert(QLatin1String("scene"), QString::fromStdString(Scene::toJson(scene->root()).toString()));
    return json;
}

} // namespace vantrel::clicktest
