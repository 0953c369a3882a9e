// How the session keeps its scene and the server's the same.

#include "common/session/link/connectionhandler.h"
#include "common/session/link/linkhealth.h"
#include "common/session/session.h"
#include "common/session/window/mainwindowhandle.h"
#include "tarn/json/patch.h"
#include "tarn/scene/scene.h"
#include "tarn/scene/sceneoperation.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <string>
#include <utility>

namespace vantrel {

namespace {
constexpr std::size_t quietThreshold = 20; // operations of a patch that are still painted one by one
constexpr qint64 sliceTime = 8;            // milliseconds of applying before the window may breathe

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

bool Session::isLive(Loading loading)
{
    return loading == Loading::Live || loading == Loading::Behind;
}

void Session::onPatchAvailable()
{
    if (m_loading == Loading::Live || m_loading == Loading::Stale)
        takeSlice();
}

/// Takes of what has come in as much as the window has time for, and comes back for the rest.
void Session::takeSlice()
{
    // Of a newer link than onConnect() has heard of nothing is taken yet: its patches need the scene cleared
    // first.
    if (m_linksSeen != m_connection->linkCount()) {
        m_loading = isLive(m_loading) ? Loading::Live : Loading::Stale;
        return setMainWindowUpdatesEnabled(true);
    }
    if (m_loading == Loading::Stale && !hasPatch())
        return setMainWindowUpdatesEnabled(true);
    // A new link may be heard of while this runs, and then goes before what the slice has come to.
    const Loading from = std::exchange(m_loading, Loading::Applying);
    const Loading next = applySlice(from);
    if (m_loading == Loading::Applying)
        m_loading = next;
    if (m_loading != Loading::Live) {
        QTimer::singleShot(0, this, &Session::takeSlice);
        return;
    }
    if (!isLive(from))
        Q_EMIT sceneLoaded();
    setMainWindowUpdatesEnabled(true);
}

/// Whether there is a patch to apply. An empty one only says that the server is there: it neither takes the
/// old scene away nor ends the loading of the new one.
bool Session::hasPatch()
{
    while (m_nextPatch.empty()) {
        if (!m_connection->recvPatch(m_nextPatch))
            return false;
        if (m_nextPatch.empty())
            m_linkHealth->noteSign();
    }
    return true;
}

/// A few milliseconds of applying; what state that leads to. Only within it changes are the server's: what
/// the operator changes between two slices goes out.
Session::Loading Session::applySlice(Loading from)
{
    QElapsedTimer clock;
    clock.start();
    if (from == Loading::Stale || from == Loading::Clearing) {
        setMainWindowUpdatesEnabled(false);
        if (!emptyArrays(*m_scene, m_scene->root(), clock))
            return Loading::Clearing;
        m_scene->clear();
        clock.restart();
    }
    while (hasPatch()) {
        const Patch patch = std::exchange(m_nextPatch, {});
        if (patch.size() > quietThreshold)
            setMainWindowUpdatesEnabled(false);
        m_scene->apply(patch, false);
        if (clock.elapsed() >= sliceTime)
            return isLive(from) ? Loading::Behind : Loading::Filling;
    }
    return Loading::Live;
}

void Session::onSceneChange(Scene* scene, int count, const SceneChange* changes, void* user)
{
    auto* session = static_cast<Session*>(user);
    if (session->m_loading == Loading::Applying)
        return;
    const bool isHeld = session->m_linkHealth->state() == LinkHealth::State::Silent;
    Patch patch;
    for (int i = 0; i < count; ++i) {
        PatchOp op;
        if (!operationOf(*scene, changes[i], op))
            continue;
        if (isHeld)
            session->m_unsent.append(PatchOp::get(op.path.toString()));
        else
            patch.append(std::move(op));
    }
    if (!isHeld)
        session->m_connection->sendPatch(patch);
}

} // namespace vantrel
