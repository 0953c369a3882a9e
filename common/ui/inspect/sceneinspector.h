#pragma once

#include <QWidget>

class QTreeView;

namespace vantrel {

class Inspector;
class ObjectTreeModel;

/// A developers' window with the whole scene as a tree, and the properties of the object that is chosen in
/// it. The tree model is the caller's and outlives the window.
class SceneInspector : public QWidget
{
    Q_OBJECT

public:
    explicit SceneInspector(ObjectTreeModel* tree, QWidget* parent = nullptr);

private:
    QTreeView* m_view;
    Inspector* m_inspector;
};

} // namespace vantrel
