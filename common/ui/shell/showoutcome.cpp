#include "common/ui/shell/showoutcome.h"

#include "common/notification/notificationmanagerimpl.h"

namespace vantrel {

void tellDone(const QString& what, const QStringList& missing)
{
    constexpr qsizetype named = 8;
    QString lacks;
    if (!missing.isEmpty()) {
        const QString names = missing.mid(0, named).join(QStringLiteral(", "));
        lacks = missing.size() > named
                    ? QObject::tr("Copy to the server what it does not have: %1 and more.").arg(names)
                    : QObject::tr("Copy to the server what it does not have: %1.").arg(names);
    }
    NotificationManagerImpl::instance()->createNotification(missing.isEmpty() ? Notification::CheckedMessage
                                                                              : Notification::WarningMessage,
                                                            what.toHtmlEscaped(), lacks.toHtmlEscaped());
}

} // namespace vantrel
