#pragma once

#include <QListView>

class QAbstractItemModel;

namespace vantrel {

class NotificationManager;

/// The list of the dialog of notifications: the newest first, each with its time, its title and its details
/// as lines of plain text; what is acknowledged is dim. Enter acknowledges the current one. Main thread only;
/// the manager may go first.
class NotificationList : public QListView
{
    Q_OBJECT

public:
    explicit NotificationList(NotificationManager* manager, QWidget* parent = nullptr);

    bool hasWaiting() const;

Q_SIGNALS:
    /// A notification came, went, or was acknowledged.
    void changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QAbstractItemModel* m_shown;
};

} // namespace vantrel
