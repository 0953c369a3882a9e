#pragma once

#include <QString>

namespace vantrel {

/// What logs in to a file server. Never written to a log.
struct ClientCredentials
{
    QString username;
    QString password;
};

} // namespace vantrel
