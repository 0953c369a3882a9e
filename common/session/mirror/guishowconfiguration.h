#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"

namespace vantrel {

/// Which show is on, and what the server does with its show when it starts.
class GUIShowConfiguration : public SceneObjectWrapper
{
    Q_OBJECT
    Q_PROPERTY(bool autoSave READ autoSave WRITE setAutoSave NOTIFY autoSaveChanged)
    Q_PROPERTY(QString autoStartShow READ autoStartShow WRITE setAutoStartShow NOTIFY autoStartShowChanged)
    Q_PROPERTY(QString autoStartPlayState READ autoStartPlayState NOTIFY autoStartPlayStateChanged)
    Q_PROPERTY(QString autoStartShowList READ autoStartShowList NOTIFY autoStartShowListChanged)
    Q_PROPERTY(QString showName READ showName NOTIFY showNameChanged)
    Q_PROPERTY(bool showModified READ showModified NOTIFY showModifiedChanged)

public:
    explicit GUIShowConfiguration(QObject* parent = nullptr);

    bool autoSave() const { return getProperty<bool>(m_info.autoSave); }
    void setAutoSave(bool value) { setProperty(m_info.autoSave, value); }
    QString autoStartShow() const { return getProperty<QString>(m_info.autoStartShow); }
    void setAutoStartShow(const QString& value) { setProperty(m_info.autoStartShow, value); }
    QString autoStartPlayState() const { return getProperty<QString>(m_info.autoStartPlayState); }
    void setAutoStartPlayState(const QString& value) { setProperty(m_info.autoStartPlayState, value); }
    QString autoStartShowList() const { return getProperty<QString>(m_info.autoStartShowList); }
    void setAutoStartShowList(const QString& value) { setProperty(m_info.autoStartShowList, value); }
    /// Of the show that is on; "default" while it has none, empty where the server tells of none.
    QString showName() const { return getProperty<QString>(m_info.showName); }
    /// Whether the show differs from what was saved under its name.
    bool showModified() const { return getProperty<bool>(m_info.showModified); }

Q_SIGNALS:
    void autoSaveChanged();
    void autoStartShowChanged();
    void autoStartPlayStateChanged();
    void autoStartShowListChanged();
    void showNameChanged();
    void showModifiedChanged();

protected:
    void postSetObjectHook() override;

private:
    void cacheProperties();

    struct Info
    {
        const PropertyInfo* autoSave = nullptr;
        const PropertyInfo* autoStartShow = nullptr;
        const PropertyInfo* autoStartPlayState = nullptr;
        const PropertyInfo* autoStartShowList = nullptr;
        const PropertyInfo* showName = nullptr;
        const PropertyInfo* showModified = nullptr;
    };
    Info m_info;
};

} // namespace vantrel
