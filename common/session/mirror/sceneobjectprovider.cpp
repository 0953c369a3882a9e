#include "common/session/mirror/sceneobjectprovider.h"

#include "common/session/mirror/guichannel.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/objectmapper.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/settings/sessionlogging.h"

#include <QTimer>

namespace vantrel {

namespace {
constexpr int retryDelay = 1000; // milliseconds
constexpr int outputCount = 2;

Scene* sceneOf(const QModelIndex& index)
{
    return index.data(ObjectTreeModel::SceneRole).value<Scene*>();
}

Object* objectOf(const QModelIndex& index)
{
    return index.data(ObjectTreeModel::ObjectRole).value<Object*>();
}

void install(SceneObjectWrapper& mirror, Scene* scene, Object* object)
{
    mirror.setScene(scene);
    mirror.setObject(object);
}

/// The named child list; null when there is no such list yet.
ObjectArray* arrayOf(Object* object, const char* name)
{
    return object ? dynamic_cast<ObjectArray*>(object->findChildByName(name, false)) : nullptr;
}
} // namespace

SceneObjectProvider::SceneObjectProvider(ObjectTreeModel* objectTree,
                                         AbstractPlaylistProvider* playlistProvider,
                                         AbstractMediaLibraryProvider* libraryProvider, QObject* parent)
    : QObject(parent)
    , m_objectTree(objectTree)
    , m_channelMapper(new ObjectMapper(this))
    , m_outputMapper(new ObjectMapper(this))
    , m_configurationMapper(new ObjectMapper(this))
    , m_previewPlayback(std::make_shared<GUIPlayback>(playlistProvider, libraryProvider))
    , m_programPlayback(std::make_shared<GUIPlayback>(playlistProvider, libraryProvider))
    , m_output1(std::make_shared<GUIOutput>())
    , m_output2(std::make_shared<GUIOutput>())
    , m_channel(std::make_shared<GUIChannel>())
    , m_previewMapping(std::make_shared<GUIMapping>())
    , m_programMapping(std::make_shared<GUIMapping>())
    , m_showConfiguration(std::make_shared<GUIShowConfiguration>())
{
    const std::initializer_list<SceneObjectWrapper*> mirrors = {
        m_previewPlayback.get(), m_programPlayback.get(), m_output1.get(),        m_output2.get(),
        m_channel.get(),         m_previewMapping.get(),  m_programMapping.get(), m_showConfiguration.get()};
    for (SceneObjectWrapper* mirror : mirrors)
        mirror->init();
    initChannelMapper();
    initOutputMapper();
    initConfigurationMapper();
    for (int output = 0; output < outputCount; ++output)
        initModelineMapper(output);
    findChannels();
    findOutputs();
}

SceneObjectProvider::~SceneObjectProvider() = default;

QPointer<GUIPlayback> SceneObjectProvider::previewPlayback() const
{
    return m_previewPlayback.get();
}

QPointer<GUIPlayback> SceneObjectProvider::programPlayback() const
{
    return m_programPlayback.get();
}

SceneObjectProvider::Modelines SceneObjectProvider::modelines(int output) const
{
    const auto found = m_modelines.find(output);
    return found == m_modelines.end() ? nullptr : found->second;
}

// Only the first channel and the first GPU are driven from here; others in their lists change nothing.

void SceneObjectProvider::initChannelMapper()
{
    m_channelMapper->setObjectName(QStringLiteral("sceneChannelMapper"));
    connect(m_channelMapper, &ObjectMapper::objectAdded, this, [this](QObject*, const QModelIndex& index) {
        if (index.row() == 0)
            addChannel(index);
    });
    connect(m_channelMapper, &ObjectMapper::objectRemoved, this, [this](QObject*, const QModelIndex& index) {
        if (index.row() == 0)
            removeChannel();
    });
}

void SceneObjectProvider::initOutputMapper()
{
    m_outputMapper->setObjectName(QStringLiteral("sceneOutputMapper"));
    connect(m_outputMapper, &ObjectMapper::objectAdded, this, [this](QObject*, const QModelIndex& index) {
        if (index.row() == 0)
            addOutputs(sceneOf(index), objectOf(index));
    });
    connect(m_outputMapper, &ObjectMapper::objectRemoved, this, [this](QObject*, const QModelIndex& index) {
        if (index.row() != 0)
            return;
        m_output1->setObject(nullptr);
        m_output2->setObject(nullptr);
        for (int output = 0; output < outputCount; ++output)
            dropModelines(output);
    });
    // A GPU may come before its outputs.
    connect(m_objectTree, &QAbstractItemModel::rowsInserted, this, &SceneObjectProvider::onTreeRowsChanged);
    connect(m_objectTree, &QAbstractItemModel::rowsRemoved, this, &SceneObjectProvider::onTreeRowsChanged);
}

void SceneObjectProvider::initConfigurationMapper()
{
    m_configurationMapper->setObjectName(QStringLiteral("sceneShowConfigurationMapper"));
    // Part of the scene's skeleton: the object stays the same for the life of the process.
    const QModelIndex root = m_objectTree->index(QStringLiteral("/device/showConfiguration"));
    m_configurationMapper->setModel(root);
    install(*m_showConfiguration, sceneOf(root), objectOf(root));
}

void SceneObjectProvider::initModelineMapper(int output)
{
    m_modelines[output] = std::make_shared<QList<std::shared_ptr<GUIModeline>>>();
    auto* mapper = m_modelineMappers[output] = new ObjectMapper(this);
    mapper->setObjectName(QStringLiteral("sceneModelineMapper"));
    connect(mapper, &ObjectMapper::objectAdded, this, [this, output](QObject*, const QModelIndex& index) {
        addModelines(sceneOf(index), objectOf(index), output);
    });
    // The first one to go empties the list.
    connect(mapper, &ObjectMapper::objectRemoved, this, [this, mapper, output] {
        dropModelines(output);
        mapper->forget();
    });
}

void SceneObjectProvider::findChannels()
{
    m_channelMapper->setModel(m_objectTree->index(QStringLiteral("/device/channels")));
}

void SceneObjectProvider::findOutputs()
{
    m_outputMapper->setModel(m_objectTree->index(QStringLiteral("/device/system/gpus")));
}

void SceneObjectProvider::findModelines(int output)
{
    const auto path = QStringLiteral("/device/system/gpus/0/outputs/%1/modelines").arg(output);
    if (!m_objectTree->hasPath(path))
        return;
    m_modelineMappers[output]->setModel(m_objectTree->index(path));
}

void SceneObjectProvider::addChannel(const QModelIndex& index)
{
    Scene* scene = sceneOf(index);
    Object* channel = objectOf(index);
    if (!channel)
        return;
    install(*m_channel, scene, channel);
    install(*m_previewPlayback, scene, channel->findChildByName("preview", false));
    install(*m_programPlayback, scene, channel->findChildByName("program", false));
    addMappings(scene, channel);
}

void SceneObjectProvider::removeChannel()
{
    m_previewPlayback->setObject(nullptr);
    m_programPlayback->setObject(nullptr);
    m_previewMapping->setObject(nullptr);
    m_programMapping->setObject(nullptr);
}

void SceneObjectProvider::addMappings(Scene* scene, Object* channel)
{
    const ObjectArray* mappings = arrayOf(channel, "mappings");
    if (!mappings || mappings->size() < 2) {
        qCDebug(lcSession) << "Retry findChannels";
        retry(m_channelRetryPending, &SceneObjectProvider::findChannels);
        return;
    }
    install(*m_previewMapping, scene, mappings->at(0));
    install(*m_programMapping, scene, mappings->at(1));
    qCInfo(lcSession) << "Adding mappings (targets =" << m_previewMapping->target()
                      << m_programMapping->target() << ")";
}

void SceneObjectProvider::addOutputs(Scene* scene, Object* gpu)
{
    const ObjectArray* outputs = arrayOf(gpu, "outputs");
    if (!outputs) {
        qCDebug(lcSession) << "Retry findOutputs";
        retry(m_outputRetryPending, &SceneObjectProvider::findOutputs);
        return;
    }
    installOutputs(scene, gpu);
}

void SceneObjectProvider::installOutputs(Scene* scene, Object* gpu)
{
    const ObjectArray* outputs = arrayOf(gpu, "outputs");
    install(*m_output1, scene, outputs->at(0));
    install(*m_output2, scene, outputs->at(1));
    for (int output = 0; output < outputCount; ++output) {
        if (outputs->at(output))
            findModelines(output);
        else
            dropModelines(output);
    }
}

void SceneObjectProvider::onTreeRowsChanged(const QModelIndex& parent, int first)
{
    const QModelIndex gpu = parent.parent();
    if (first >= outputCount || !gpu.isValid() || gpu.row() != 0 || gpu.parent() != m_outputMapper->root())
        return;
    Object* object = objectOf(gpu);
    if (const ObjectArray* outputs = arrayOf(object, "outputs"); outputs && outputs == objectOf(parent))
        installOutputs(sceneOf(gpu), object);
}

/// The modes of an output go away together.
void SceneObjectProvider::dropModelines(int output)
{
    if (m_modelines[output]->isEmpty())
        return;
    m_modelines[output]->clear();
    Q_EMIT modelinesChanged(output);
}

void SceneObjectProvider::addModelines(Scene* scene, Object* modeline, int output)
{
    if (output >= outputCount)
        return;
    auto mirror = std::make_shared<GUIModeline>();
    mirror->init();
    install(*mirror, scene, modeline);
    m_modelines[output]->append(std::move(mirror));
    Q_EMIT modelinesChanged(output);
}

/// Looks again a second later: what is missing has not arrived yet. One look is under way at a time.
void SceneObjectProvider::retry(bool& pending, void (SceneObjectProvider::*find)())
{
    if (std::exchange(pending, true))
        return;
    QTimer::singleShot(retryDelay, this, [this, &pending, find] {
        pending = false;
        (this->*find)();
    });
}

} // namespace vantrel
