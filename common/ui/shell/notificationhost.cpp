#include "common/ui/shell/notificationhost.h"

#include "common/qml/qmlmanager.h"
#include "common/ui/shell/notificationdialogwrapper.h"

#include <QLoggingCategory>
#include <QQmlComponent>
#include <QQuickItem>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

} // namespace

NotificationHost::NotificationHost(const QUrl& file, QWidget* parent)
    : QuickView(nullptr, parent)
    , m_file(file)
{
    setFocusPolicy(Qt::TabFocus); // a click takes nobody's keys
    setClearColor(Qt::transparent);
    hide();
    qCInfo(log) << "Creating widget for QML file:" << file;
}

void NotificationHost::setManager(NotificationManager* manager)
{
    if (m_manager)
        disconnect(m_manager, nullptr, this, nullptr);
    m_manager = manager;
    if (!setRootProperty("manager", QVariant::fromValue(manager)))
        qCWarning(log) << "Failed to apply new manager" << manager << "to QML component";
    if (!manager || m_component)
        return;
    connect(manager, &NotificationManager::notificationAdded, this, &NotificationHost::loadOnce);
    if (!manager->notifications().isEmpty())
        loadOnce();
}

void NotificationHost::setDialog(NotificationDialogWrapper* dialog)
{
    setRootProperty("dialog", QVariant::fromValue(dialog));
}

bool NotificationHost::setRootProperty(const char* name, const QVariant& value)
{
    if (rootObject())
        return rootObject()->setProperty(name, value);
    m_properties.insert(QLatin1String(name), value);
    return true;
}

void NotificationHost::loadOnce()
{
    if (m_component)
        return;
    QMLManager::instance()->initialize();
    m_component =
        new QQmlComponent(QMLManager::instance()->engine(), m_file, QQmlComponent::Asynchronous, this);
    if (m_component->isLoading())
        connect(m_component, &QQmlComponent::statusChanged, this, &NotificationHost::onLoaded);
    else
        onLoaded();
}

void NotificationHost::onLoaded()
{
    auto* shown = qobject_cast<QQuickItem*>(m_component->createWithInitialProperties(m_properties));
    if (!shown) {
        qCWarning(log) << "Failed to load" << m_file << m_component->errors();
        return;
    }
    setContent(m_file, nullptr, shown); // it is the view's own from now on
    // Later: a view that is resized lays out its items, which are being laid out.
    connect(shown, &QQuickItem::implicitWidthChanged, this, &NotificationHost::onRootResized,
            Qt::QueuedConnection);
    connect(shown, &QQuickItem::implicitHeightChanged, this, &NotificationHost::onRootResized,
            Qt::QueuedConnection);
    onRootResized();
}

void NotificationHost::onRootResized()
{
    fit(QSizeF(rootObject()->implicitWidth(), rootObject()->implicitHeight()).toSize());
}

} // namespace vantrel
