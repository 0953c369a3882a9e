#pragma once

#include <QPointer>
#include <QWidget>

class QMenu;

namespace vantrel {

class NotificationManager;
class ObjectTreeModel;
class ZTLabel;

/// The developers' window: class and object name of the widget under the cursor, and the way to the other
/// developers' windows. Install it as an application event filter, and delete it after closed().
class InspectorWidget : public QWidget
{
    Q_OBJECT

public:
    /// menu: further developers' actions, the caller's; may be null.
    InspectorWidget(QMenu* menu, NotificationManager* manager, QWidget* parent = nullptr);

    /// Opens a window with all notifications, which deletes itself when it is closed.
    static QWidget* showNotifications(NotificationManager* manager);
    /// Opens a window with the scene and its properties, which deletes itself when it is closed.
    static QWidget* showScene(ObjectTreeModel* tree);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setInspectorInfo(const QWidget* widget);

    ZTLabel* m_class;
    ZTLabel* m_name;
    QPointer<NotificationManager> m_manager;
};

} // namespace vantrel
