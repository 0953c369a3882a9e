#pragma once

#include "common/filesystem/schedule/filesystemoperations.h"

#include <QObject>
#include <QPointer>

namespace vantrel {

/// The lists of operations as declarative views see them. Main thread only.
class QmlFileSystemOperations : public QObject
{
    Q_OBJECT
    Q_PROPERTY(vantrel::FileSystemOperations* operationsProvider READ operationsProvider WRITE
                   setOperationsProvider NOTIFY operationsProviderChanged)
    Q_PROPERTY(
        QList<const vantrel::BaseOperation*> allOperations READ allOperations NOTIFY allOperationsChanged)
    Q_PROPERTY(QList<const vantrel::BaseOperation*> activeOperations READ activeOperations NOTIFY
                   activeOperationsChanged)
    Q_PROPERTY(QList<const vantrel::BaseOperation*> pendingOperations READ pendingOperations NOTIFY
                   pendingOperationsChanged)
    Q_PROPERTY(QList<const vantrel::BaseOperation*> finishedOperations READ finishedOperations NOTIFY
                   finishedOperationsChanged)

public:
    using Operations = QList<const BaseOperation*>;
    using QObject::QObject;

    FileSystemOperations* operationsProvider() const { return m_provider; }
    /// null: all lists are empty.
    void setOperationsProvider(FileSystemOperations* provider);
    Operations allOperations() const;
    Operations activeOperations() const;
    Operations pendingOperations() const;
    Operations finishedOperations() const;

Q_SIGNALS:
    void operationsProviderChanged();
    void allOperationsChanged();
    void activeOperationsChanged();
    void pendingOperationsChanged();
    void finishedOperationsChanged();

private:
    QPointer<FileSystemOperations> m_provider;
};

} // namespace vantrel
