#include "common/ui/inspect/propertiesmodel.h"

#include "common/ui/binding/mapperlogging.h"
#include "common/ui/binding/propertyconversion.h"

namespace vantrel {

PropertiesModel::PropertiesModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

PropertiesModel::~PropertiesModel()
{
    if (m_scene)
        m_scene->removeChangeCallback(&PropertiesModel::onSceneChangeStatic, this);
}

void PropertiesModel::setObject(Scene* scene, Object* object)
{
    beginResetModel();
    if (m_scene)
        m_scene->removeChangeCallback(&PropertiesModel::onSceneChangeStatic, this);
    m_scene = Ref<Scene>(scene);
    m_object = Ref<Object>(object);
    if (m_scene)
        m_scene->addChangeCallback(&PropertiesModel::onSceneChangeStatic, this);
    m_properties = object ? object->getProperties() : std::vector<const PropertyInfo*>();
    endResetModel();
}

int PropertiesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_properties.size());
}

int PropertiesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

const PropertyInfo* PropertiesModel::info(const QModelIndex& index) const
{
    return index.isValid() && index.row() < int(m_properties.size()) ? m_properties[index.row()] : nullptr;
}

/// -1 for a property that is none of the object's.
int PropertiesModel::rowOf(const PropertyInfo* property) const
{
    const auto row = property ? property->index : -1; // the order of a type's list
    return row >= 0 && row < int(m_properties.size()) && m_properties[std::size_t(row)] == property ? row
                                                                                                    : -1;
}

QVariant PropertiesModel::data(const QModelIndex& index, int role) const
{
    const PropertyInfo* property = info(index);
    if (!property || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    if (index.column() == NameColumn)
        return QString::fromStdString(property->name);
    Variant value;
    if (!m_object->getProperty(property, value))
        return {};
    if (role == Qt::DisplayRole && value.type() == VariantType::Double)
        return QString::fromStdString(value.asString(3));
    return toQVariant(value);
}

bool PropertiesModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const PropertyInfo* property = info(index);
    if (!property || index.column() != ValueColumn || role != Qt::EditRole || property->readOnly)
        return false;
    Variant converted;
    if (!fromQVariant(value, property->type, converted)) {
        qCWarning(lcMapper).noquote() << QStringLiteral("Could not convert ") +
                                             QLatin1String(toStr(property->type)) +
                                             QStringLiteral(" variant");
        return false;
    }
    Variant current;
    if (m_object->getProperty(property, current) && current == converted) {
        qCDebug(lcMapper) << "no change";
        return false;
    }
    Path path;
    return m_scene && m_scene->pathOf(m_object.get(), property, path) &&
           m_scene->replaceProperty(m_scene->find(PathView(path)), converted);
}

QVariant PropertiesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == NameColumn ? tr("Name") : tr("Value");
}

Qt::ItemFlags PropertiesModel::flags(const QModelIndex& index) const
{
    const PropertyInfo* property = info(index);
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (property && index.column() == ValueColumn && !property->readOnly)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant PropertiesModel::toQVariant(const Variant& value)
{
    return propertyToQVariant(value);
}

bool PropertiesModel::fromQVariant(const QVariant& value, VariantType type, Variant& out)
{
    return propertyFromQVariant(value, type, out);
}

void PropertiesModel::onSceneChangeStatic(Scene*, int count, const SceneChange* changes, void* user)
{
    auto* self = static_cast<PropertiesModel*>(user);
    for (int i = 0; i < count; ++i) {
        if (changes[i].kind != SceneChange::PropertyChanged || changes[i].object != self->m_object.get())
            continue;
        const int row = self->rowOf(changes[i].property);
        if (row < 0)
            continue;
        const QModelIndex cell = self->index(row, ValueColumn);
        Q_EMIT self->dataChanged(cell, cell);
    }
}

} // namespace vantrel
