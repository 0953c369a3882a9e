#pragma once

#include "common/ui/ztframe.h"

class QTableView;

namespace vantrel {

class Object;
class PropertiesModel;
class Scene;
class ZTLabel;

/// A panel with the path and the properties of one scene object.
class Inspector : public ZTFrame
{
    Q_OBJECT

public:
    explicit Inspector(QWidget* parent = nullptr);

    /// Null shows nothing.
    void inspect(Scene* scene, Object* object);
    void setObjectNames(const QString& base) override;

private:
    ZTLabel* m_path;
    PropertiesModel* m_model;
    QTableView* m_table;
};

} // namespace vantrel
