#pragma once

#include "tarn/scene/scene.h"

#include <QList>
#include <QMetaProperty>
#include <QModelIndex>
#include <QObject>
#include <QPointer>

namespace vantrel {

/// Binds properties of widgets to properties of one scene object, both ways. A widget's change is written
/// when its notify signal comes, and also on Tab, Return, Enter and on loss of the focus. The targets are the
/// caller's. Main thread only.
class PropertiesMapper : public QObject
{
    Q_OBJECT

public:
    explicit PropertiesMapper(QObject* parent = nullptr);
    ~PropertiesMapper() override;

    /// Also drops all mappings.
    void setObject(Scene* scene, Object* object);
    /// From an index of the object tree.
    void setObject(const QModelIndex& index);
    Object* object() const { return m_object.get(); }

    /// name: the scene object's property.
    void addMapping(const QString& name, QObject* target, const char* property);
    /// To the target's USER property.
    void addMapping(const QString& name, QObject* target);
    void removeMapping(QObject* target);
    void clearMappings();
    /// Brings all targets to the scene's values.
    void populate();
    /// Writes all targets' values to the scene.
    void commit();

    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void onMappedObjectChange();

private:
    struct PropertyMapping
    {
        QPointer<QObject> target;
        const PropertyInfo* info = nullptr;
        QMetaProperty property;
    };
    static void onSceneChangeStatic(Scene* scene, int count, const SceneChange* changes, void* user);
    static void setMinMaxDef(const PropertyInfo& info, const QMetaObject& metaObject, QObject* target);
    void populate(const QObject* target);
    void populate(const PropertyMapping& mapping);
    void populate(const PropertyMapping& mapping, const Variant& value);
    void show(const PropertyInfo& property, const Variant& value);
    void commit(const QObject* target);
    void commit(const PropertyMapping& mapping);
    void release(const PropertyMapping& mapping);

    Ref<Scene> m_scene;
    Ref<Object> m_object;
    QList<PropertyMapping> m_mappings;
    bool m_populating = false; // what the scene brings is not written back, however a target rounds it
};

} // namespace vantrel
