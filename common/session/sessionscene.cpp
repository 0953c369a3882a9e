// How the session keeps its scene and the server's the same.

#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "common/session/window/mainwindowhandle.h"
#include "tarn/json/patch.h"
#include "tarn/scene/scene.h"

#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <QTimer>

#include <algorithm>
#include <string>

namespace vantrel {

namespace {
constexpr std::size_t quietThreshold = 20; // operations of a patch that are still painted one by one
constexpr qint64 sliceTime = 8;            // milliseconds of applying before the window may breathe

bool operationOf(const Scene& scene, const SceneChange& change, PatchOp& op)
{
    switch (change.kind) {
    case SceneChange::Added:
        op.op = PatchOpType::Add;
        op.value = Json::object();
        return scene.pathOf(change.object, op.path);
    case SceneChange::Removed:
        op.op = PatchOpType::Remove;
        return scene.pathOf(change.object, op.path);
    case SceneChange::PropertyChanged:
        op.op = PatchOpType::Replace;
        Json::fromVariant(change.value, op.value);
        return scene.pathOf(change.object, change.property, op.path);
    default:
        return false;
    }
}
/// Takes the items out of the arrays of the scene's skeleton; false when the slice of time was over before.
bool emptyArrays(Scene& scene, Object* below, const QElapsedTimer& clock)
{
    const auto* array = dynamic_cast<ObjectArray*>(below);
    if (!array)
        return std::ranges::all_of(below->getChildren(),
                                   [&](Object* child) { return emptyArrays(scene, child, clock); });
    Path path;
    if (array->size() == 0 || !scene.pathOf(array, path))
        return true;
    while (array->size() > 0) {
        if (clock.elapsed() >= sliceTime)
            return false;
        Path item = path;
        item.append(std::to_string(array->size() - 1));
        if (!scene.removeObject(scene.find(PathView(item))))
            return true;
    }
    return true;
}
} // namespace

void Session::onPatchAvailable()
{
    if (m_drainPosted)
        return;
    // Of a newer link than onConnect() has heard of nothing is taken yet: its patches need the scene cleared
    // first.
    if (m_linksSeen == m_connection->linkCount() && (m_sceneCleared || hasPatch())) {
        if (!clearForLoading() || !applyPatches()) {
            m_drainPosted = true;
            QTimer::singleShot(0, this, [this] {
                m_drainPosted = false;
                onPatchAvailable();
            });
            return;
        }
        if (std::exchange(m_sceneLoading, false))
            Q_EMIT sceneLoaded();
    }
    setMainWindowUpdatesEnabled(true);
}

/// Whether there is a patch to apply. An empty one only says that the server is there: it neither takes the
/// old scene away nor ends the loading of the new one.
bool Session::hasPatch()
{
    while (m_nextPatch.empty()) {
        if (!m_connection->recvPatch(m_nextPatch))
            return false;
    }
    return true;
}

/// The first patches after a connection replace everything; false when the slice of time was over before.
bool Session::clearForLoading()
{
    if (!m_sceneLoading || m_sceneCleared)
        return true;
    setMainWindowUpdatesEnabled(false);
    const QScopedValueRollback applying(m_applyingPatch, true);
    QElapsedTimer clock;
    clock.start();
    if (!emptyArrays(*m_scene, m_scene->root(), clock))
        return false;
    m_scene->clear();
    m_sceneCleared = true;
    return true;
}

/// Applies what has come in, for a slice of time; false when there may be more.
bool Session::applyPatches()
{
    // Only while applying: what the operator changes between two slices goes to the server.
    const QScopedValueRollback applying(m_applyingPatch, true);
    QElapsedTimer clock;
    clock.start();
    while (hasPatch()) {
        const Patch patch = std::exchange(m_nextPatch, {});
        if (patch.size() > quietThreshold)
            setMainWindowUpdatesEnabled(false);
        m_scene->apply(patch, false);
        if (clock.elapsed() >= sliceTime)
            return false;
    }
    return true;
}

void Session::onSceneChange(Scene* scene, int count, const SceneChange* changes, void* user)
{
    auto* session = static_cast<Session*>(user);
    if (session->m_applyingPatch)
        return;
    Patch patch;
    for (int i = 0; i < count; ++i) {
        PatchOp op;
        if (operationOf(*scene, changes[i], op))
            patch.append(std::move(op));
    }
    session->m_connection->sendPatch(patch);
}

} // namespace vantrel
