#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/scene/scene.h"

#include <QTimer>

class QTableView;

namespace vantrel {

class PropertiesModel;
class ZTLabel;

/// A panel with the path and the properties of one scene object. It follows the object through the tree, and
/// shows nothing more of it once it has gone.
class Inspector : public ZTFrame
{
    Q_OBJECT

public:
    explicit Inspector(QWidget* parent = nullptr);
    ~Inspector() override;

    /// Null shows nothing.
    void inspect(Scene* scene, Object* object);
    void setObjectNames(const QString& base) override;

private:
    static void onSceneChangeStatic(Scene* scene, int count, const SceneChange* changes, void* user);
    void setScene(Scene* scene);
    void followObject();

    ZTLabel* m_path;
    PropertiesModel* m_model;
    QTableView* m_table;
    Ref<Scene> m_scene;
    QTimer m_follow; // a moved object is out of the tree for a moment
};

} // namespace vantrel
