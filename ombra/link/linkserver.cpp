#include "ombra/link/linkserver.h"

#include "ombra/link/linkpolicy.h"
#include "tarn/json/patchnames.h"
#include "tarn/log/log.h"
#include "tarn/scene/sceneoperation.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantrel::ombra {

namespace {

// Who has heard nothing between two ticks is told something: a silence of at most two of them.
constexpr std::chrono::milliseconds lifeTick{100};

} // namespace

LinkServer::LinkServer(boost::asio::io_context& io, Scene& scene, Handlers handlers)
    : m_io(io)
    , m_scene(scene)
    , m_handlers(std::move(handlers))
    , m_listener(io, "vantrel.link",
                 [this](boost::asio::ip::tcp::socket socket) { return accept(std::move(socket)); })
    , m_life(io)
{
    m_callback = [](Scene*, int count, const SceneChange* changes, void* user) {
        static_cast<LinkServer*>(user)->onSceneChange(count, changes);
    };
    m_scene.addChangeCallback(m_callback, this);
    LinkClient::Handlers clientHandlers;
    clientHandlers.operation = [this, alive = std::weak_ptr(m_alive)](LinkClient& client, const PatchOp& op) {
        if (!alive.expired())
            handle(client, op);
    };
    clientHandlers.aside = [this, alive = std::weak_ptr(m_alive)](std::function<void()> work) {
        if (!alive.expired())
            boost::asio::post(m_reader, std::move(work));
    };
    clientHandlers.drained = [this, alive = std::weak_ptr(m_alive)](LinkClient& client) {
        if (!alive.expired())
            answerGet(client, {});
    };
    clientHandlers.closed = [this, alive = std::weak_ptr(m_alive)](LinkClient& client) {
        if (alive.expired())
            return;
        Log::write(LogLevel::Info, "vantrel.link", client.name() + " has left");
        std::erase_if(m_clients, [&](const auto& held) { return held.get() == &client; });
    };
    m_clientHandlers = std::make_shared<const LinkClient::Handlers>(std::move(clientHandlers));
    showLife();
}

LinkServer::~LinkServer()
{
    m_alive.reset();
    m_reader.join();
    m_scene.removeChangeCallback(m_callback, this);
    for (const auto& client : m_clients)
        client->close();
}

bool LinkServer::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    return m_listener.listen(address, port, error);
}

unsigned short LinkServer::port() const
{
    return m_listener.port();
}

bool LinkServer::accept(boost::asio::ip::tcp::socket socket)
{
    boost::system::error_code code;
    PeerLimit::Place room = m_room.enter(socket.remote_endpoint(code).address());
    if (!room)
        return false;
    m_clients.push_back(std::make_shared<LinkClient>(std::move(socket), m_clientHandlers, std::move(room)));
    Log::write(LogLevel::Info, "vantrel.link", m_clients.back()->name() + " has joined");
    m_clients.back()->start();
    return true;
}

void LinkServer::handle(LinkClient& client, const PatchOp& op)
{
    switch (op.op) {
    case PatchOpType::Get:
        return answerGet(client, op.path);
    case PatchOpType::Invoke: {
        std::string error;
        if (!m_handlers.invoke(op.path, op.value, &error))
            Log::write(LogLevel::Warning, "vantrel.link",
                       client.name() + ": cannot call " + op.path.toString() + ": " + error);
        return;
    }
    case PatchOpType::Replace:
        return writeProperty(client, op);
    case PatchOpType::Add:
    case PatchOpType::Remove:
    case PatchOpType::Move:
    case PatchOpType::Copy:
        return restructure(client, op);
    case PatchOpType::Test:
        return; // asks for nothing
    }
}

void LinkServer::answerGet(LinkClient& client, PathView path)
{
    if (!path.empty()) {
        sendBack(client, path.toPath(), false);
        return scheduleFlush();
    }
    if (!client.startSnapshot())
        return; // one is on its way: it asks again by drained()
    Patch piece;
    for (const PatchOp& op : m_scene.snapshot()) {
        piece.append(op);
        if (piece.size() == operationsPerFrame)
            client.send(std::exchange(piece, {}), LinkClient::Content::Snapshot);
    }
    // Also an empty one: a scene of nothing is an answer too.
    client.send(piece, LinkClient::Content::Snapshot);
    scheduleFlush();
}

/// Sends what the scene holds at a path; nothing, with a log line, when there is nothing. missing: the client
/// has no such object any more.
void LinkServer::sendBack(LinkClient& client, const Path& path, bool missing)
{
    const ScenePointer at = m_scene.find(path);
    PatchOp op;
    op.path = path;
    Variant value;
    if (at.property() && m_scene.getProperty(at, value)) {
        op.op = PatchOpType::Replace;
        Json::fromVariant(value, op.value);
    } else if (at.deref() && !at.property() && !at.method()) {
        op.op = missing ? PatchOpType::Add : PatchOpType::Replace; // in an array an add would be one more
        op.value = Scene::toJson(at.deref());
    } else {
        Log::write(LogLevel::Debug, "vantrel.link", client.name() + ": nothing is at " + path.toString());
        return;
    }
    Patch patch;
    patch.append(op);
    client.send(patch);
}

void LinkServer::writeProperty(LinkClient& client, const PatchOp& op)
{
    const ScenePointer at = m_scene.find(op.path);
    if (!at.deref() || !at.property())
        return refuse(client, op, "no such property");
    std::string why;
    if (!clientMayWrite(at.deref(), at.property(), op.value, why))
        return refuse(client, op, why);
    const Ref<Object> object(at.deref());
    const PropertyInfo* property = at.property();
    Patch patch;
    patch.append(op);
    m_origin = &client;
    const bool fits = m_scene.apply(patch, true);
    m_origin = nullptr;
    if (!fits)
        return refuse(client, op, "the value is of another type");
    Variant now;
    Json json;
    object->getProperty(property, now);
    Json::fromVariant(now, json);
    if (!(json == op.value)) { // taken, but not as it was written
        PatchOp correction = op;
        correction.value = json;
        client.add(correction);
    }
    client.written(op.path);
    m_handlers.written(object.get(), property);
    scheduleFlush();
}

/// Tells the client what the scene holds where its writes crossed those of others.
void LinkServer::settleCrossed(LinkClient& client)
{
    for (const Path& path : client.takeCrossed()) {
        const ScenePointer at = m_scene.find(path);
        Variant value;
        PatchOp op{PatchOpType::Replace, path, {}, {}};
        if (!at.property() || !m_scene.getProperty(at, value))
            continue; // gone meanwhile
        Json::fromVariant(value, op.value);
        client.add(op);
    }
}

void LinkServer::restructure(LinkClient& client, const PatchOp& op)
{
    std::string why;
    if (!clientMayRestructure(m_scene, op, why))
        return refuse(client, op, why);
    Patch patch;
    patch.append(op);
    m_origin = &client;
    const bool fits = m_scene.apply(patch, true);
    m_origin = nullptr;
    if (!fits)
        return refuse(client, op, "it does not fit");
    scheduleFlush();
}

/// Says so in the log, and puts the client's copy right where that can be done.
void LinkServer::refuse(LinkClient& client, const PatchOp& op, const std::string& why)
{
    Log::write(LogLevel::Warning, "vantrel.link",
               client.name() + ": refused to " + toStr(op.op) + " " + op.path.toString() + ": " + why);
    if (op.op == PatchOpType::Replace || op.op == PatchOpType::Remove)
        sendBack(client, op.path, op.op == PatchOpType::Remove);
    scheduleFlush();
}

void LinkServer::onSceneChange(int count, const SceneChange* changes)
{
    for (int i = 0; i < count; ++i) {
        PatchOp op;
        if (operationOf(m_scene, changes[i], op))
            publish(op);
    }
}

void LinkServer::publish(const PatchOp& op)
{
    for (const auto& client : m_clients) {
        if (client.get() != m_origin)
            client->add(op);
    }
    if (!m_clients.empty())
        scheduleFlush();
}

void LinkServer::scheduleFlush()
{
    if (std::exchange(m_flushPosted, true))
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (alive.expired())
            return;
        m_flushPosted = false;
        const auto clients = m_clients; // one may go while it is flushed
        for (const auto& client : clients)
            client->flush();
    });
}

void LinkServer::showLife()
{
    const auto clients = m_clients; // one may go meanwhile
    for (const auto& client : clients) {
        settleCrossed(*client);
        client->showLife();
    }
    m_life.expires_after(lifeTick);
    m_life.async_wait([this, alive = std::weak_ptr(m_alive)](boost::system::error_code code) {
        if (!code && !alive.expired())
            showLife();
    });
}

} // namespace vantrel::ombra
