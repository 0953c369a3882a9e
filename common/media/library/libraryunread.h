#pragma once

#include <QString>

namespace vantrel {

/// What stands for a library that is not read: nobody is told that it is empty before that is known. Both are
/// empty once it is read.
struct LibraryUnread
{
    QString brief; // in the place of a name
    QString whole; // a sentence
};

} // namespace vantrel
