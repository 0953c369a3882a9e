#pragma once

#include <QObject>
#include <QString>

namespace vantrel {

/// The address of the present server for widgets and declarative views; empty while there is none. Follows
/// the session's connection, and stays empty when it is made without a session.
class ConnectionProvider : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString hostAddress READ hostAddress NOTIFY hostAddressChanged)

public:
    explicit ConnectionProvider(QObject* parent = nullptr);

    const QString& hostAddress() const { return m_hostAddress; }

public Q_SLOTS:
    void onAddressChange(const QString& address);

Q_SIGNALS:
    void hostAddressChanged();

private:
    QString m_hostAddress;
};

} // namespace vantrel
