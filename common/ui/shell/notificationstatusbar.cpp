#include "common/ui/shell/notificationstatusbar.h"

#include "common/ui/shell/notificationstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/clickablelayoutwidget.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>

namespace vantrel {

NotificationStatusBar::NotificationStatusBar(QWidget* parent)
    : QWidget(parent)
    , m_counts(new NotificationStatusModel(this))
{
    setObjectName(QStringLiteral("NotificationStatusBar"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    for (const auto type : {Notification::ErrorMessage, Notification::WarningMessage,
                            Notification::CheckedMessage, Notification::InfoMessage}) {
        auto* entry = new ClickableLayoutWidget(this);
        auto* icon = new QLabel(entry);
        auto* number = new ZTLabel(entry);
        followFontSize(icon, [icon, type](FontSize size) {
            const int extent = scaled(16, size);
            icon->setPixmap(IconCache::pixmap(notificationIcon(type), notificationColor(type),
                                              QSize(extent, extent), icon->devicePixelRatioF()));
        });
        number->setObjectName(QStringLiteral("NotificationStatusBar-count-%1").arg(static_cast<int>(type)));
        entry->setToolTip(notificationName(type));
        auto* row = new QHBoxLayout(entry);
        row->setContentsMargins(6, 2, 6, 2);
        row->setSpacing(4);
        row->addWidget(icon);
        row->addWidget(number);
        layout->addWidget(entry);
        connect(entry, &ClickableLayoutWidget::clicked, this, &NotificationStatusBar::clicked);
        m_entries.insert(type, {entry, number});
    }
    connect(m_counts, &QAbstractItemModel::modelReset, this, &NotificationStatusBar::refresh);
    refresh();
}

void NotificationStatusBar::setManager(NotificationManager* manager)
{
    m_counts->setManager(manager);
}

int NotificationStatusBar::count(Notification::MessageType type) const
{
    return m_counts->count(type);
}

void NotificationStatusBar::refresh()
{
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it) {
        const int waiting = count(it.key());
        it.value().number->setText(QString::number(waiting));
        it.value().widget->setAccessibleName(tr("%1: %2").arg(notificationName(it.key())).arg(waiting));
        it.value().widget->setVisible(waiting > 0);
    }
}

} // namespace vantrel
