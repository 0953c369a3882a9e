#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"

#include <QColor>

namespace vantrel {

/// One mapping of a channel to an output. A change of its scaling raises the signal of the scene's own name
/// for it.
class GUIMapping : public SceneObjectWrapper
{
    Q_OBJECT
    Q_PROPERTY(QString target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(QString scaling READ scaling WRITE setScaling NOTIFY scalingChanged)
    Q_PROPERTY(QString defaultScaleMode READ scaling WRITE setScaling NOTIFY defaultScaleModeChanged)
    Q_PROPERTY(
        QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)
    Q_PROPERTY(bool linearTransitions READ linearTransitions NOTIFY linearTransitionsChanged)

public:
    explicit GUIMapping(QObject* parent = nullptr);

    QString target() const { return getProperty<QString>(m_info.target); }
    void setTarget(const QString& value) { setProperty(m_info.target, value); }
    QString scaling() const { return getProperty<QString>(m_info.scaling); }
    void setScaling(const QString& value) { setProperty(m_info.scaling, value); }
    QColor backgroundColor() const { return getProperty<QColor>(m_info.backgroundColor); }
    void setBackgroundColor(const QColor& value) { setProperty(m_info.backgroundColor, value); }
    bool linearTransitions() const { return getProperty<bool>(m_info.linearTransitions); }

Q_SIGNALS:
    void targetChanged();
    void scalingChanged();
    void defaultScaleModeChanged();
    void backgroundColorChanged();
    void linearTransitionsChanged();

protected:
    void postSetObjectHook() override;

private:
    void cacheProperties();

    struct Info
    {
        const PropertyInfo* target = nullptr;
        const PropertyInfo* scaling = nullptr;
        const PropertyInfo* backgroundColor = nullptr;
        const PropertyInfo* linearTransitions = nullptr;
    };
    Info m_info;
};

} // namespace vantrel
