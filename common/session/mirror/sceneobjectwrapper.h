#pragma once

#include "tarn/qt/variantqt.h"
#include "tarn/scene/scene.h"

#include <QHash>
#include <QObject>
#include <QString>

namespace vantrel {

/// Mirror of one scene object as QObject properties. It stands on a placeholder of the right type until the
/// real object arrives and goes back to one when that leaves, so that widgets bind once at start-up; reset()
/// tells of both. Writes go to the scene and from there to the server. A notify signal with an argument hands
/// the value of the change on. Main thread only.
class SceneObjectWrapper : public QObject
{
    Q_OBJECT

public:
    explicit SceneObjectWrapper(const QString& typeName, QObject* parent = nullptr);
    ~SceneObjectWrapper() override;

    /// Once, after construction of the derived class.
    void init();
    void init(Scene* scene, Object* object);
    void setScene(Scene* scene);
    /// Null installs a new placeholder.
    void setObject(Object* object);
    Scene* scene() const { return m_scene.get(); }
    /// Never null for a registered type.
    Object* object() const { return m_object.get(); }
    const QString& typeName() const { return m_typeName; }

Q_SIGNALS:
    /// Another object stands behind the mirror: read everything anew.
    void reset();

protected:
    virtual void postSetObjectHook();
    /// Before the notify signal of the property.
    virtual void notifyPropertyChangedHook(const std::string& name);

    template <typename T>
    T getProperty(const PropertyInfo* info) const
    {
        Variant value;
        if (!info || !m_object->getProperty(info, value))
            return T{};
        return value.as<T>();
    }

    /// Writes and tells the scene's listeners; nothing happens for an equal value.
    template <typename T>
    void setProperty(const PropertyInfo* info, const T& value)
    {
        write(info, Variant::from(value));
    }
    using QObject::setProperty;

private:
    static void onSceneChangeStatic(Scene* scene, int count, const SceneChange* changes, void* user);
    void write(const PropertyInfo* info, const Variant& value);
    void prepareSignalMap();
    void notifyPropertyChanged(const PropertyInfo* property, const Variant& value);
    Ref<Object> makePlaceholder() const;

    QString m_typeName;
    Ref<Scene> m_scene;
    Ref<Object> m_object;
    QHash<const PropertyInfo*, int> m_signalMap; // property to the index of its notify signal
};

} // namespace vantrel
