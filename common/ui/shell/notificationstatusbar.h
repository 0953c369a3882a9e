#pragma once

#include "common/notification/notification.h"
#include "common/notification/notificationstatusmodel.h"

#include <QMap>
#include <QWidget>

namespace vantrel {

class ClickableLayoutWidget;
class ZTLabel;

/// How many notifications of each kind wait to be acknowledged; nothing is shown for a kind without any. A
/// click asks for the list.
class NotificationStatusBar : public QWidget
{
    Q_OBJECT

public:
    explicit NotificationStatusBar(QWidget* parent = nullptr);

    NotificationManager* manager() const { return m_counts->manager(); }
    void setManager(NotificationManager* manager);
    /// Unacknowledged notifications of the kind.
    int count(Notification::MessageType type) const;

Q_SIGNALS:
    void clicked();

private:
    struct Entry
    {
        ClickableLayoutWidget* widget;
        ZTLabel* number;
    };
    void refresh();

    NotificationStatusModel* m_counts;
    QMap<Notification::MessageType, Entry> m_entries;
};

} // namespace vantrel
