#pragma once

#include "common/notification/notificationmanager.h"
#include "common/qml/quickview.h"

#include <QPointer>
#include <QVariantMap>

class QQmlComponent;

namespace vantrel {

class NotificationDialogWrapper;

/// A widget whose declarative file shows a manager's notifications. The file is loaded when the first of them
/// comes, beside the main thread: no start waits for it. The widget is as large as the root item asks for,
/// and hides while that asks for nothing.
class NotificationHost : public QuickView
{
    Q_OBJECT

public:
    /// Null while there is none.
    NotificationManager* manager() const { return m_manager; }
    void setManager(NotificationManager* manager);
    /// What shows the details; null shows none.
    void setDialog(NotificationDialogWrapper* dialog);

protected:
    NotificationHost(const QUrl& file, QWidget* parent);

    /// Of the root item, which may be yet to come.
    bool setRootProperty(const char* name, const QVariant& value);
    /// wanted: what the root item asks for, empty for nothing.
    virtual void fit(const QSize& wanted) = 0;

private:
    void loadOnce();
    void onLoaded();
    void onRootResized();

    QPointer<NotificationManager> m_manager;
    QUrl m_file;
    QQmlComponent* m_component = nullptr;
    QVariantMap m_properties; // until there is a root item
};

} // namespace vantrel
