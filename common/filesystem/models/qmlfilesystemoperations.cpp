#include "common/filesystem/models/qmlfilesystemoperations.h"

namespace vantrel {

namespace {

QmlFileSystemOperations::Operations plain(const OperationPtrList& operations)
{
    QmlFileSystemOperations::Operations all;
    for (const OperationPtr& operation : operations)
        all.append(operation.data());
    return all;
}

} // namespace

void QmlFileSystemOperations::setOperationsProvider(FileSystemOperations* provider)
{
    if (m_provider == provider)
        return;
    if (m_provider)
        m_provider->disconnect(this);
    m_provider = provider;
    using Self = QmlFileSystemOperations;
    using Source = FileSystemOperations;
    if (provider) {
        connect(provider, &Source::allOperationsChanged, this, &Self::allOperationsChanged);
        connect(provider, &Source::activeOperationsChanged, this, &Self::activeOperationsChanged);
        connect(provider, &Source::pendingOperationsChanged, this, &Self::pendingOperationsChanged);
        connect(provider, &Source::finishedOperationsChanged, this, &Self::finishedOperationsChanged);
    }
    Q_EMIT operationsProviderChanged();
    Q_EMIT allOperationsChanged();
    Q_EMIT activeOperationsChanged();
    Q_EMIT pendingOperationsChanged();
    Q_EMIT finishedOperationsChanged();
}

QmlFileSystemOperations::Operations QmlFileSystemOperations::allOperations() const
{
    return m_provider ? plain(m_provider->allOperations()) : Operations();
}

QmlFileSystemOperations::Operations QmlFileSystemOperations::activeOperations() const
{
    return m_provider ? plain(m_provider->activeOperations()) : Operations();
}

QmlFileSystemOperations::Operations QmlFileSystemOperations::pendingOperations() const
{
    return m_provider ? plain(m_provider->pendingOperations()) : Operations();
}

QmlFileSystemOperations::Operations QmlFileSystemOperations::finishedOperations() const
{
    return m_provider ? plain(m_provider->finishedOperations()) : Operations();
}

} // namespace vantrel
