#pragma once

#include <QString>

namespace vantrel {

/// What a server answered to a patch of the media library.
struct DiffApiError
{
    bool networkFailed = false;
    int networkErrorCode = 0;
    QString networkMessage;
    bool success = false;
    int statusCode = 0;
    QString message; // the server's own words
};

} // namespace vantrel
