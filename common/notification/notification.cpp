#include "common/notification/notification.h"

#include "common/notification/notificationmanager.h"

namespace vantrel {

class NotificationPrivate
{
public:
    QPointer<NotificationManager> manager;
    Notification::MessageType type = Notification::InfoMessage;
    QString title;
    QString details;
    QDateTime dateTime = QDateTime::currentDateTime();
    bool isAccepted = false;
    int repeats = 1;
};

namespace {
template <typename T>
bool assign(T& field, const T& value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}
} // namespace

Notification::Notification(NotificationManager* manager, QObject* parent)
    : QObject(parent)
    , m_private(std::make_unique<NotificationPrivate>())
{
    m_private->manager = manager;
}

Notification::Notification(NotificationManager* manager, MessageType type, const QString& title,
                           const QString& details, QObject* parent)
    : Notification(manager, parent)
{
    m_private->type = type;
    m_private->title = title;
    m_private->details = details;
}

Notification::~Notification() = default;

Notification::MessageType Notification::type() const
{
    return m_private->type;
}

void Notification::setType(MessageType type)
{
    if (assign(m_private->type, type))
        Q_EMIT typeChanged();
}

QString Notification::title() const
{
    return m_private->title;
}

void Notification::setTitle(const QString& title)
{
    if (assign(m_private->title, title))
        Q_EMIT titleChanged();
}

QString Notification::details() const
{
    return m_private->details;
}

void Notification::setDetails(const QString& details)
{
    if (assign(m_private->details, details))
        Q_EMIT detailsChanged();
}

QDateTime Notification::dateTime() const
{
    return m_private->dateTime;
}

void Notification::setDateTime(const QDateTime& dateTime)
{
    if (assign(m_private->dateTime, dateTime))
        Q_EMIT dateTimeChanged();
}

bool Notification::isAccepted() const
{
    return m_private->isAccepted;
}

void Notification::setIsAccepted(bool accepted)
{
    if (assign(m_private->isAccepted, accepted))
        Q_EMIT isAcceptedChanged();
}

int Notification::repeats() const
{
    return m_private->repeats;
}

void Notification::repeat()
{
    ++m_private->repeats;
    m_private->dateTime = QDateTime::currentDateTime();
    Q_EMIT repeatsChanged();
}

NotificationManager* Notification::manager() const
{
    return m_private->manager;
}

QDebug operator<<(QDebug debug, Notification::MessageType type)
{
    const QDebugStateSaver saver(debug);
    static constexpr const char* names[] = {"INFO", "CHECKED", "WARNING", "ERROR"};
    debug.nospace() << names[type];
    return debug;
}

QDebug operator<<(QDebug debug, const Notification& notification)
{
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "<Notification " << notification.type() << ": " << notification.title()
                              << " - " << notification.details() << ", "
                              << notification.dateTime().toString(QStringLiteral("HH:mm:ss.zzz"));
    return debug;
}

} // namespace vantrel
