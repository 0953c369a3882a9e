#include "common/ui/inspect/inspectorwidget.h"

#include "common/notification/notificationmanager.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/ui/inspect/sceneinspector.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFormLayout>
#include <QHeaderView>
#include <QMenu>
#include <QMetaEnum>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int detailsColumn = 3;
constexpr int leastWidth =
    420; // pixels at the medium text size: most names fit, and the window stays as it is

void fillTable(QTableWidget* table, const NotificationManager* manager)
{
    const auto list = manager->notifications();
    table->setRowCount(int(list.size()));
    for (int row = 0; row < table->rowCount(); ++row) {
        const Notification& notification = *list[row];
        const auto type = QMetaEnum::fromType<Notification::MessageType>().valueToKey(notification.type());
        const QStringList texts = {notification.dateTime().toString(QStringLiteral("HH:mm:ss.zzz")),
                                   QLatin1String(type), notification.title(), notification.details(),
                                   notification.isAccepted() ? InspectorWidget::tr("yes") : QString()};
        for (int column = 0; column < int(texts.size()); ++column)
            table->setItem(row, column, new QTableWidgetItem(texts[column]));
    }
}
} // namespace

InspectorWidget::InspectorWidget(QMenu* menu, NotificationManager* manager, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_class(new ZTLabel(this))
    , m_name(new ZTLabel(this))
    , m_manager(manager)
{
    setObjectName(QStringLiteral("InspectorWidget"));
    setWindowTitle(tr("Inspector"));
    m_class->setObjectName(QStringLiteral("InspectorWidget-class"));
    m_name->setObjectName(QStringLiteral("InspectorWidget-name"));
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* info = new QFormLayout;
    for (const auto& [text, value] :
         {std::pair(tr("Class:"), m_class), std::pair(tr("Object name:"), m_name)}) {
        auto* title = new ZTLabel(text, this);
        title->setStyleClass(QStringLiteral("dim"));
        info->addRow(title, value);
    }
    auto* notifications = new PushButton(tr("Notifications"), this);
    notifications->setObjectName(QStringLiteral("InspectorWidget-notifications"));
    connect(notifications, &QPushButton::clicked, this, [this] { showNotifications(m_manager); });
    auto* scene = new PushButton(tr("Scene"), this);
    scene->setObjectName(QStringLiteral("InspectorWidget-scene"));
    scene->setEnabled(Session::instance() != nullptr);
    connect(scene, &QPushButton::clicked, this, [] {
        if (const Session* session = Session::instance())
            showScene(session->objectTreeModel());
    });
    info->setHorizontalSpacing(spacing::normal);
    info->setVerticalSpacing(spacing::tight);
    followFontSize(this, [this](FontSize size) { setMinimumWidth(scaled(leastWidth, size)); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::wide, spacing::loose, spacing::wide, spacing::wide);
    layout->setSpacing(spacing::normal);
    layout->addLayout(info);
    layout->addSpacing(spacing::tight);
    layout->addWidget(notifications);
    layout->addWidget(scene);
    if (menu) {
        auto* more = new PushButton(tr("Developer"), this);
        more->setMenu(menu);
        layout->addWidget(more);
    }
}

QWidget* InspectorWidget::showNotifications(NotificationManager* manager)
{
    if (!manager)
        return nullptr;
    auto* table = new QTableWidget(0, 5);
    table->setAttribute(Qt::WA_DeleteOnClose);
    table->setObjectName(QStringLiteral("NotificationInspector"));
    table->setWindowTitle(tr("Notifications"));
    table->setHorizontalHeaderLabels(
        {tr("Created"), tr("Message type"), tr("Title"), tr("Details"), tr("Accepted")});
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Many may come in one go.
    auto* refill = new QTimer(table);
    refill->setSingleShot(true);
    const auto refillSoon = [refill] { refill->start(0); };
    connect(refill, &QTimer::timeout, manager, [table, manager] { fillTable(table, manager); });
    connect(manager, &NotificationManager::notificationsChanged, table, refillSoon);
    connect(manager, &NotificationManager::notificationChanged, table, refillSoon);
    fillTable(table, manager);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setSectionResizeMode(detailsColumn, QHeaderView::Stretch);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->resize(scaled(860, currentFontSize()), scaled(320, currentFontSize()));
    table->show();
    return table;
}

QWidget* InspectorWidget::showScene(ObjectTreeModel* tree)
{
    if (!tree)
        return nullptr;
    auto* window = new SceneInspector(tree);
    window->setAttribute(Qt::WA_DeleteOnClose);
    // The tree is the session's, which may end first.
    connect(tree, &QObject::destroyed, window, [window] { delete window; });
    window->show();
    return window;
}

bool InspectorWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter)
        setInspectorInfo(QApplication::widgetAt(QCursor::pos()));
    return QWidget::eventFilter(watched, event);
}

void InspectorWidget::setInspectorInfo(const QWidget* widget)
{
    if (!widget || widget->window() == this)
        return;
    m_class->setText(QLatin1String(widget->metaObject()->className()));
    m_name->setText(widget->objectName());
}

void InspectorWidget::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

} // namespace vantrel
