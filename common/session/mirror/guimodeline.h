#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"

namespace vantrel {

/// One video mode that an output offers.
class GUIModeline : public SceneObjectWrapper
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setId NOTIFY idChanged)
    Q_PROPERTY(QString label READ label WRITE setLabel NOTIFY labelChanged)
    Q_PROPERTY(int width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(int height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(bool standard READ standard WRITE setStandard NOTIFY standardChanged)
    Q_PROPERTY(bool interlaced READ interlaced WRITE setInterlaced NOTIFY interlacedChanged)
    Q_PROPERTY(double refreshRate READ refreshRate WRITE setRefreshRate NOTIFY refreshRateChanged)

public:
    explicit GUIModeline(QObject* parent = nullptr);

    QString id() const { return getProperty<QString>(m_info.id); }
    void setId(const QString& value) { setProperty(m_info.id, value); }
    QString label() const { return getProperty<QString>(m_info.label); }
    void setLabel(const QString& value) { setProperty(m_info.label, value); }
    int width() const { return getProperty<int>(m_info.width); }
    void setWidth(int value) { setProperty(m_info.width, value); }
    int height() const { return getProperty<int>(m_info.height); }
    void setHeight(int value) { setProperty(m_info.height, value); }
    bool standard() const { return getProperty<bool>(m_info.standard); }
    void setStandard(bool value) { setProperty(m_info.standard, value); }
    bool interlaced() const { return getProperty<bool>(m_info.interlaced); }
    void setInterlaced(bool value) { setProperty(m_info.interlaced, value); }
    double refreshRate() const { return getProperty<double>(m_info.refreshRate); }
    void setRefreshRate(double value) { setProperty(m_info.refreshRate, value); }

Q_SIGNALS:
    /// Any of the below, which one for one are more than who shows them all wants to hear of.
    void changed();
    void idChanged();
    void labelChanged();
    void widthChanged();
    void heightChanged();
    void standardChanged();
    void interlacedChanged();
    void refreshRateChanged();

protected:
    void postSetObjectHook() override;
    void notifyPropertyChangedHook(const std::string& property) override;

private:
    void cacheProperties();

    struct Info
    {
        const PropertyInfo* id = nullptr;
        const PropertyInfo* label = nullptr;
        const PropertyInfo* width = nullptr;
        const PropertyInfo* height = nullptr;
        const PropertyInfo* standard = nullptr;
        const PropertyInfo* interlaced = nullptr;
        const PropertyInfo* refreshRate = nullptr;
    };
    Info m_info;
};

} // namespace vantrel
