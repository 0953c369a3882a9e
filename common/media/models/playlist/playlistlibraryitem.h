#pragma once

#include <QString>

namespace vantrel {

/// What the table of playlists shows of one.
struct PlaylistLibraryItem
{
    uint number = 0;
    QString name;
    QString date = QStringLiteral("yyyy-mm-dd"); // the server keeps none
    double duration = 0;                         // seconds; of an infinite one, up to where it never ends
    uint entryCount = 0;
    bool isInfinite = false;
};

} // namespace vantrel
