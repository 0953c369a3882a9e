#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QJsonObject;
class QNetworkReply;

namespace vantrel {

class Session;

/// The connected server's host name and firmware version, read once a connection. The texts stay after a
/// disconnection until the next read; a failed read empties them. Owned by the session.
class SystemProxy : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString hostname READ hostname NOTIFY hostnameChanged)
    Q_PROPERTY(QString version READ version NOTIFY versionChanged)

public:
    using QObject::QObject;

    void setSession(Session* session);
    const QString& hostname() const { return m_hostname; }
    const QString& version() const { return m_version; }

    /// object: the server's answer, {"hostname": text, "firmwareVersion": {...}}.
    void setData(const QJsonObject& object);
    /// "major.minor.patch" with the tag right behind; a missing number counts as 0.
    static QString formatVersionString(const QJsonObject& object);

public Q_SLOTS:
    void onConnected();

Q_SIGNALS:
    void hostnameChanged();
    void versionChanged();

private:
    void onFinished(QNetworkReply* reply);

    Session* m_session = nullptr;
    QPointer<QNetworkReply> m_reply; // of the newest read; an earlier server's answer is dropped
    QString m_hostname;
    QString m_version;
};

} // namespace vantrel
