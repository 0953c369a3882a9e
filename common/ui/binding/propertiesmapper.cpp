#include "common/ui/binding/propertiesmapper.h"

#include "common/session/mirror/objecttreemodel.h"
#include "common/ui/binding/mapperlogging.h"
#include "common/ui/binding/propertyconversion.h"
#include "tarn/qt/variantqt.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace vantrel {

PropertiesMapper::PropertiesMapper(QObject* parent)
    : QObject(parent)
{
}

PropertiesMapper::~PropertiesMapper()
{
    if (m_scene)
        m_scene->removeChangeCallback(&PropertiesMapper::onSceneChangeStatic, this);
}

void PropertiesMapper::setObject(Scene* scene, Object* object)
{
    clearMappings();
    if (m_scene)
        m_scene->removeChangeCallback(&PropertiesMapper::onSceneChangeStatic, this);
    m_scene = Ref<Scene>(scene);
    m_object = Ref<Object>(object);
    if (m_scene)
        m_scene->addChangeCallback(&PropertiesMapper::onSceneChangeStatic, this);
    populate();
}

void PropertiesMapper::setObject(const QModelIndex& index)
{
    setObject(index.data(ObjectTreeModel::SceneRole).value<Scene*>(),
              index.data(ObjectTreeModel::ObjectRole).value<Object*>());
}

void PropertiesMapper::addMapping(const QString& name, QObject* target, const char* property)
{
    if (!m_object || !target) {
        qCWarning(lcMapper) << "Object not set";
        return;
    }
    const PropertyInfo* info = m_object->findProperty(name.toStdString());
    if (!info) {
        qCWarning(lcMapper).noquote() << QStringLiteral("No such property ") + name + QStringLiteral(" on ") +
                                             QString::fromStdString(m_object->getTypeName());
        return;
    }
    const QMetaObject* metaObject = target->metaObject();
    const QMetaProperty destination = metaObject->property(metaObject->indexOfProperty(property));
    if (!destination.isValid()) {
        qCWarning(lcMapper).noquote()
            << QStringLiteral("dstProperty ") + QLatin1String(property) + QStringLiteral(" is not valid");
        return;
    }
    setMinMaxDef(*info, *metaObject, target);
    target->installEventFilter(this);
    m_mappings.append({target, info, destination});
    populate(target);
    if (!destination.hasNotifySignal()) {
        qCDebug(lcMapper) << "No notify signal on " << target;
        return;
    }
    const QMetaMethod slot =
        this->metaObject()->method(this->metaObject()->indexOfSlot("onMappedObjectChange()"));
    connect(target, destination.notifySignal(), this, slot);
}

void PropertiesMapper::addMapping(const QString& name, QObject* target)
{
    if (!target) {
        qCWarning(lcMapper) << "Object not set";
        return;
    }
    const QMetaProperty user = target->metaObject()->userProperty();
    if (!user.isValid()) {
        qCWarning(lcMapper) << target << " does not have USER property";
        return;
    }
    if (!user.hasNotifySignal())
        qCWarning(lcMapper) << "No notify signal on USER property";
    addMapping(name, target, user.name());
}

/// The limits of the scene property for a target that has such properties. Targets are built on exactly what
/// is written here: "min" ends up with the maximum, "def" has it too, and "max" is left alone.
void PropertiesMapper::setMinMaxDef(const PropertyInfo& info, const QMetaObject& metaObject, QObject* target)
{
    const int min = metaObject.indexOfProperty("min");
    const int max = metaObject.indexOfProperty("max");
    const int def = metaObject.indexOfProperty("def");
    // A property without a limit has nothing to write.
    const auto write = [&](int index, const Variant& value) {
        if (value.type() != VariantType::None)
            metaObject.property(index).write(target, variantToQVariant(value));
    };
    if (min != 0)
        write(min, info.min);
    if (max != 0)
        write(min, info.max);
    if (def != 0)
        write(def, info.max);
}

void PropertiesMapper::release(const PropertyMapping& mapping)
{
    if (!mapping.target)
        return;
    mapping.target->removeEventFilter(this);
    mapping.target->disconnect(this);
}

void PropertiesMapper::removeMapping(QObject* target)
{
    m_mappings.removeIf([&](const PropertyMapping& mapping) {
        if (mapping.target != target)
            return false;
        release(mapping);
        return true;
    });
}

void PropertiesMapper::clearMappings()
{
    for (const PropertyMapping& mapping : std::as_const(m_mappings))
        release(mapping);
    m_mappings.clear();
}

void PropertiesMapper::populate()
{
    const QList<PropertyMapping> mappings = m_mappings;
    for (const PropertyMapping& mapping : mappings)
        populate(mapping);
}

void PropertiesMapper::populate(const QObject* target)
{
    const QList<PropertyMapping> mappings = m_mappings;
    for (const PropertyMapping& mapping : mappings)
        if (mapping.target == target)
            populate(mapping);
}

void PropertiesMapper::populate(const PropertyMapping& mapping)
{
    Variant value;
    if (m_object && m_object->getProperty(mapping.info, value))
        populate(mapping, value);
    else if (mapping.target)
        qCWarning(lcMapper) << "Could not retrieve property from object";
}

void PropertiesMapper::populate(const PropertyMapping& mapping, const Variant& value)
{
    if (!mapping.target)
        return;
    QVariant converted = variantToQVariant(value);
    if (mapping.property.typeId() == QMetaType::QString) {
        if (value.type() == VariantType::None || value.type() == VariantType::Bytes) {
            qCWarning(lcMapper).noquote() << QStringLiteral("Can't convert ") +
                                                 QLatin1String(toStr(value.type())) +
                                                 QStringLiteral(" to string");
            return;
        }
        converted = QString::fromStdString(value.asString(-1));
    }
    const QScopedValueRollback populating(m_populating, true);
    mapping.property.write(mapping.target, converted);
}

void PropertiesMapper::commit()
{
    const QList<PropertyMapping> mappings = m_mappings;
    for (const PropertyMapping& mapping : mappings)
        commit(mapping);
}

void PropertiesMapper::commit(const QObject* target)
{
    const QList<PropertyMapping> mappings = m_mappings;
    for (const PropertyMapping& mapping : mappings)
        if (mapping.target == target)
            commit(mapping);
}

void PropertiesMapper::commit(const PropertyMapping& mapping)
{
    if (!mapping.target || !m_scene || !m_object || mapping.info->readOnly)
        return;
    Variant value;
    if (!propertyFromQVariant(mapping.property.read(mapping.target), mapping.info->type, value)) {
        qCWarning(lcMapper) << "Could not convert from QVariant to Variant";
        return;
    }
    Path path;
    if (!m_scene->pathOf(m_object.get(), mapping.info, path) ||
        !m_scene->replaceProperty(m_scene->find(PathView(path)), value))
        qCWarning(lcMapper) << "Could not set property";
}

void PropertiesMapper::onMappedObjectChange()
{
    if (!m_populating)
        commit(sender());
}

bool PropertiesMapper::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusOut) {
        commit(watched);
    } else if (event->type() == QEvent::KeyPress) {
        switch (static_cast<const QKeyEvent*>(event)->key()) {
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            commit(watched);
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

void PropertiesMapper::show(const PropertyInfo& property, const Variant& value)
{
    const QList<PropertyMapping> mappings = m_mappings;
    for (const PropertyMapping& mapping : mappings)
        if (mapping.info == &property)
            populate(mapping, value);
}

void PropertiesMapper::onSceneChangeStatic(Scene*, int count, const SceneChange* changes, void* user)
{
    auto* self = static_cast<PropertiesMapper*>(user);
    for (int i = 0; i < count; ++i)
        if (changes[i].kind == SceneChange::PropertyChanged && changes[i].object == self->m_object.get())
            self->show(*changes[i].property, changes[i].value);
}

} // namespace vantrel
