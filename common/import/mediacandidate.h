#pragma once

#include <QString>

namespace vantrel {

/// A file of a drop that is no picture: what is known of it so far.
struct MediaCandidate
{
    QString path;
    bool isTold = false; // whether it plays
    double seconds = 0;  // of one that does
    QString fault{};     // why it is left out, plain text; empty for one that is not
};

} // namespace vantrel
