#pragma once

#include "tarn/scene/scene.h"

#include <QAbstractTableModel>

#include <vector>

namespace vantrel {

/// The properties of one scene object: name and value, the value editable unless the property is read-only.
/// Main thread only.
class PropertiesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NameColumn = 0, ValueColumn = 1, ColumnCount = 2 };

    explicit PropertiesModel(QObject* parent = nullptr);
    ~PropertiesModel() override;

    /// Null shows nothing.
    void setObject(Scene* scene, Object* object);
    Object* object() const { return m_object.get(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// False for an equal value, which writes nothing, and for one that does not fit the property.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// bool, int and double as they are, all else as text.
    static QVariant toQVariant(const Variant& value);
    /// For bool, int, double and string; false for other types and for what does not convert.
    static bool fromQVariant(const QVariant& value, VariantType type, Variant& out);

private:
    static void onSceneChangeStatic(Scene* scene, int count, const SceneChange* changes, void* user);
    const PropertyInfo* info(const QModelIndex& index) const;
    int rowOf(const PropertyInfo* property) const;

    Ref<Scene> m_scene;
    Ref<Object> m_object;
    std::vector<const PropertyInfo*> m_properties;
};

} // namespace vantrel
