#pragma once

#include <QList>
#include <QModelIndex>
#include <QObject>
#include <QPointer>

#include <map>
#include <memory>

namespace vantrel {

class AbstractMediaLibraryProvider;
class AbstractPlaylistProvider;
class GUIChannel;
class GUIMapping;
class GUIModeline;
class GUIOutput;
class GUIPlayback;
class GUIShowConfiguration;
class Object;
class ObjectMapper;
class ObjectTreeModel;
class Scene;

/// Owner of the mirrors of the scene objects that the application knows by name. They exist from the start
/// and survive reconnections; mappers on the object tree move them from placeholders to live objects and
/// back. Owned by the session; main thread only.
class SceneObjectProvider : public QObject
{
    Q_OBJECT

public:
    using Modelines = std::shared_ptr<QList<std::shared_ptr<GUIModeline>>>;

    SceneObjectProvider(ObjectTreeModel* objectTree, AbstractPlaylistProvider* playlistProvider,
                        AbstractMediaLibraryProvider* libraryProvider, QObject* parent = nullptr);
    ~SceneObjectProvider() override;

    QPointer<GUIPlayback> previewPlayback() const;
    QPointer<GUIPlayback> programPlayback() const;
    std::shared_ptr<GUIOutput> output1() const { return m_output1; }
    std::shared_ptr<GUIOutput> output2() const { return m_output2; }
    /// The modes of output 0 or 1; null for any other number. The list changes in place.
    Modelines modelines(int output) const;
    std::shared_ptr<GUIChannel> channel() const { return m_channel; }
    std::shared_ptr<GUIMapping> previewMapping() const { return m_previewMapping; }
    std::shared_ptr<GUIMapping> programMapping() const { return m_programMapping; }
    std::shared_ptr<GUIShowConfiguration> showConfiguration() const { return m_showConfiguration; }

Q_SIGNALS:
    /// The list of modes of an output has grown or was emptied.
    void modelinesChanged(int output);

private:
    void initChannelMapper();
    void initOutputMapper();
    void initConfigurationMapper();
    void initModelineMapper(int output);
    void findChannels();
    void findOutputs();
    void findModelines(int output);
    void addChannel(const QModelIndex& index);
    void removeChannel();
    void addMappings(Scene* scene, Object* channel);
    void addOutputs(Scene* scene, Object* gpu);
    void installOutputs(Scene* scene, Object* gpu);
    /// Outputs of the first GPU came or went.
    void onTreeRowsChanged(const QModelIndex& parent, int first);
    void addModelines(Scene* scene, Object* modeline, int output);
    void dropModelines(int output);
    void retry(bool& pending, void (SceneObjectProvider::*find)());

    ObjectTreeModel* m_objectTree;
    ObjectMapper* m_channelMapper;
    ObjectMapper* m_outputMapper;
    ObjectMapper* m_configurationMapper;
    std::map<int, ObjectMapper*> m_modelineMappers;
    std::shared_ptr<GUIPlayback> m_previewPlayback;
    std::shared_ptr<GUIPlayback> m_programPlayback;
    std::shared_ptr<GUIOutput> m_output1;
    std::shared_ptr<GUIOutput> m_output2;
    std::map<int, Modelines> m_modelines;
    std::shared_ptr<GUIChannel> m_channel;
    std::shared_ptr<GUIMapping> m_previewMapping;
    std::shared_ptr<GUIMapping> m_programMapping;
    std::shared_ptr<GUIShowConfiguration> m_showConfiguration;
    bool m_channelRetryPending = false;
    bool m_outputRetryPending = false;
};

} // namespace vantrel
