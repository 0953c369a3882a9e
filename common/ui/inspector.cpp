#include "common/ui/inspector.h"

#include "common/ui/propertiesmodel.h"
#include "common/ui/ztlabel.h"

#include <QHeaderView>
#include <QTableView>
#include <QVBoxLayout>

namespace vantrel {

Inspector::Inspector(QWidget* parent)
    : ZTFrame(parent)
    , m_path(new ZTLabel(this))
    , m_model(new PropertiesModel(this))
    , m_table(new QTableView(this))
{
    auto* title = new ZTLabel(tr("Properties"), this);
    title->setStyleClass(QStringLiteral("title"));
    m_path->setStyleClass(QStringLiteral("dim"));
    m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_table->setModel(m_model);
    m_table->setAccessibleName(tr("Properties"));
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(m_path);
    layout->addWidget(m_table);
}

void Inspector::inspect(Scene* scene, Object* object)
{
    Path path;
    if (scene && object)
        scene->pathOf(object, path);
    m_path->setText(QString::fromStdString(path.toString()));
    m_model->setObject(scene, object);
    m_table->resizeColumnToContents(PropertiesModel::NameColumn);
}

void Inspector::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_path->setObjectName(base + QStringLiteral("-path"));
    m_table->setObjectName(base + QStringLiteral("-table"));
}

} // namespace vantrel
