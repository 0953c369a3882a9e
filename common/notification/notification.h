#pragma once

#include <QDateTime>
#include <QDebug>
#include <QObject>
#include <QPointer>

#include <memory>

namespace vantrel {

class NotificationManager;
class NotificationPrivate;

/// One message to the operator. Held by shared pointers, first of all the manager's; GUI thread only.
class Notification : public QObject
{
    Q_OBJECT
    Q_PROPERTY(MessageType type READ type WRITE setType NOTIFY typeChanged)
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString details READ details WRITE setDetails NOTIFY detailsChanged)
    Q_PROPERTY(QDateTime dateTime READ dateTime WRITE setDateTime NOTIFY dateTimeChanged)
    Q_PROPERTY(bool isAccepted READ isAccepted WRITE setIsAccepted NOTIFY isAcceptedChanged)

public:
    enum MessageType {
        InfoMessage = 0,
        CheckedMessage = 1,
        WarningMessage = 2,
        ErrorMessage = 3,
    };
    Q_ENUM(MessageType)

    explicit Notification(NotificationManager* manager, QObject* parent = nullptr);
    Notification(NotificationManager* manager, MessageType type, const QString& title, const QString& details,
                 QObject* parent = nullptr);
    ~Notification() override;

    MessageType type() const;
    void setType(MessageType type);
    /// The headline; may hold simple rich text, so texts from outside must come escaped.
    QString title() const;
    void setTitle(const QString& title);
    /// Longer, of several lines; rich text like the title.
    QString details() const;
    void setDetails(const QString& details);
    /// The time of creation unless set.
    QDateTime dateTime() const;
    void setDateTime(const QDateTime& dateTime);
    /// The operator has acknowledged it.
    bool isAccepted() const;
    void setIsAccepted(bool accepted);
    /// How often it was said, the first time among them.
    int repeats() const;
    /// It is said once more: now.
    void repeat();
    NotificationManager* manager() const;

Q_SIGNALS:
    void typeChanged();
    void titleChanged();
    void detailsChanged();
    void dateTimeChanged();
    void isAcceptedChanged();
    void repeatsChanged();

private:
    std::unique_ptr<NotificationPrivate> m_private;
};

QDebug operator<<(QDebug debug, Notification::MessageType type);
QDebug operator<<(QDebug debug, const Notification& notification);

} // namespace vantrel
