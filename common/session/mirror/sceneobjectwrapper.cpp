#include "common/session/mirror/sceneobjectwrapper.h"

#include "common/session/settings/sessionlogging.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace vantrel {

SceneObjectWrapper::SceneObjectWrapper(const QString& typeName, QObject* parent)
    : QObject(parent)
    , m_typeName(typeName)
    , m_object(makePlaceholder())
{
}

SceneObjectWrapper::~SceneObjectWrapper()
{
    setScene(nullptr);
}

Ref<Object> SceneObjectWrapper::makePlaceholder() const
{
    return Ref<Object>(TypeInfo::instantiate(m_typeName.toStdString()));
}

void SceneObjectWrapper::init()
{
    prepareSignalMap();
}

void SceneObjectWrapper::init(Scene* scene, Object* object)
{
    setScene(scene);
    setObject(object);
    init();
}

void SceneObjectWrapper::setScene(Scene* scene)
{
    if (m_scene.get() == scene)
        return;
    if (m_scene)
        m_scene->removeChangeCallback(&SceneObjectWrapper::onSceneChangeStatic, this);
    m_scene = Ref<Scene>(scene);
    if (m_scene)
        m_scene->addChangeCallback(&SceneObjectWrapper::onSceneChangeStatic, this);
}

void SceneObjectWrapper::setObject(Object* object)
{
    m_object = object ? Ref<Object>(object) : makePlaceholder();
    postSetObjectHook();
    Q_EMIT reset();
}

void SceneObjectWrapper::postSetObjectHook() {}

void SceneObjectWrapper::notifyPropertyChangedHook(const std::string&) {}

void SceneObjectWrapper::write(const PropertyInfo* info, const Variant& value)
{
    Variant current;
    if (!info || !m_object->getProperty(info, current) || current == value)
        return;
    if (m_object->setProperty(info, value) && m_scene)
        m_scene->notifyPropertyChange(m_object.get(), info, value);
}

void SceneObjectWrapper::prepareSignalMap()
{
    m_signalMap.clear();
    for (int i = QObject::staticMetaObject.propertyCount(); i < metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = metaObject()->property(i);
        const PropertyInfo* info = m_object->findProperty(property.name()); // none: the mirror's own
        if (info && property.hasNotifySignal())
            m_signalMap.insert(info, property.notifySignalIndex());
        else if (!property.hasNotifySignal())
            qCWarning(lcSession) << "Notify signal missing from property" << property.name();
    }
}

void SceneObjectWrapper::onSceneChangeStatic(Scene*, int count, const SceneChange* changes, void* user)
{
    auto* self = static_cast<SceneObjectWrapper*>(user);
    if (!self) {
        qCWarning(lcSession) << "Trying to use a null object";
        return;
    }
    for (int i = 0; i < count; ++i)
        if (changes[i].kind == SceneChange::PropertyChanged && changes[i].object == self->m_object.get())
            self->notifyPropertyChanged(changes[i].property, changes[i].value);
}

void SceneObjectWrapper::notifyPropertyChanged(const PropertyInfo* property, const Variant& value)
{
    const auto found = m_signalMap.constFind(property);
    if (found == m_signalMap.cend())
        return;
    notifyPropertyChangedHook(property->name);
    const QMetaMethod signal = metaObject()->method(*found);
    if (signal.parameterCount() == 0) {
        signal.invoke(this, Qt::DirectConnection);
        return;
    }
    const QMetaType type = signal.parameterMetaType(0);
    QVariant argument = variantToQVariant(value);
    argument.convert(type);
    signal.invoke(this, Qt::DirectConnection, QGenericArgument(type.name(), argument.constData()));
}

} // namespace vantrel
