#include "common/ui/inspect/inspector.h"

#include "common/ui/inspect/propertiesmodel.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

/// The usual editors, but for numbers one that keeps all their digits: a spin box would round what it is only
/// opened on.
class ValueDelegate : public QStyledItemDelegate
{
public:
    explicit ValueDelegate(QObject* parent)
        : QStyledItemDelegate(parent)
    {
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override
    {
        const int type = index.data(Qt::EditRole).typeId();
        if (type != QMetaType::Double && type != QMetaType::LongLong)
            return QStyledItemDelegate::createEditor(parent, option, index);
        auto* editor = new QLineEdit(parent);
        editor->setFrame(false);
        return editor;
    }
};

} // namespace

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
    m_table->setItemDelegateForColumn(PropertiesModel::ValueColumn, new ValueDelegate(m_table));
    m_table->setAccessibleName(tr("Properties"));
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(m_path);
    layout->addWidget(m_table);
    m_follow.setSingleShot(true);
    connect(&m_follow, &QTimer::timeout, this, &Inspector::followObject);
}

Inspector::~Inspector()
{
    setScene(nullptr);
}

void Inspector::inspect(Scene* scene, Object* object)
{
    setScene(scene);
    m_follow.stop();
    Path path;
    if (scene && object)
        scene->pathOf(object, path);
    m_path->setText(QString::fromStdString(path.toString()));
    m_model->setObject(scene, object);
    m_table->resizeColumnToContents(PropertiesModel::NameColumn);
}

void Inspector::setScene(Scene* scene)
{
    if (m_scene.get() == scene)
        return;
    if (m_scene)
        m_scene->removeChangeCallback(&Inspector::onSceneChangeStatic, this);
    m_scene = Ref<Scene>(scene);
    if (m_scene)
        m_scene->addChangeCallback(&Inspector::onSceneChangeStatic, this);
}

void Inspector::onSceneChangeStatic(Scene*, int count, const SceneChange* changes, void* user)
{
    auto* self = static_cast<Inspector*>(user);
    const auto isStructural = [](const SceneChange& change) {
        return change.kind != SceneChange::PropertyChanged;
    };
    if (self->m_model->object() && std::any_of(changes, changes + count, isStructural))
        self->m_follow.start(0);
}

/// Other objects that come and go change its path, too.
void Inspector::followObject()
{
    Path path;
    if (!m_scene || !m_model->object())
        return;
    if (m_scene->pathOf(m_model->object(), path)) {
        m_path->setText(QString::fromStdString(path.toString()));
        return;
    }
    const QString last = m_path->text();
    inspect(m_scene.get(), nullptr);
    m_path->setText(tr("%1 is gone").arg(last));
}

void Inspector::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_path->setObjectName(base + QStringLiteral("-path"));
    m_table->setObjectName(base + QStringLiteral("-table"));
}

} // namespace vantrel
