#pragma once

#include "common/filesystem/model/abstractclientfactory.h"

#include <QObject>

namespace vantrel {

/// Makes the clients with which the application reaches servers.
class ClientFactory : public QObject, public AbstractClientFactory
{
    Q_OBJECT

public:
    using QObject::QObject;

    QSharedPointer<FileSystemClient> createFtpClient() override;
};

} // namespace vantrel
