#include "common/ui/inspect/sceneinspector.h"

#include "common/session/mirror/objecttreemodel.h"
#include "common/ui/inspect/inspector.h"

#include <QItemSelectionModel>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

namespace vantrel {

SceneInspector::SceneInspector(ObjectTreeModel* tree, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_view(new QTreeView(this))
    , m_inspector(new Inspector(this))
{
    setObjectName(QStringLiteral("SceneInspector"));
    setWindowTitle(tr("Scene"));
    m_view->setObjectName(QStringLiteral("SceneInspector-tree"));
    m_view->setAccessibleName(tr("Scene"));
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true); // arrays may hold very many objects
    m_view->setModel(tree);
    m_view->expandToDepth(1);
    m_inspector->setObjectNames(QStringLiteral("SceneInspector-properties"));
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) {
                m_inspector->inspect(index.data(ObjectTreeModel::SceneRole).value<Scene*>(),
                                     index.data(ObjectTreeModel::ObjectRole).value<Object*>());
            });
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(m_view);
    splitter->addWidget(m_inspector);
    splitter->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
    resize(900, 600);
}

} // namespace vantrel
