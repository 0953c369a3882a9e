#pragma once

#include <QString>

#include <functional>

namespace vantrel {

/// What becomes of an upload once all of it has gone over: the server is asked whether it has it whole and
/// whether its place is free, and then to give it its name, without a word of the main thread's between.
struct FtpPlacing
{
    QString destination;
    qint64 size = 0;                // bytes that are to lie there
    bool mayReplace = false;        // else nothing may lie at the destination
    std::function<bool()> isWanted; // asked just before, on the worker's thread; may be empty
};

/// How far a transfer came beyond its bytes.
struct FtpOutcome
{
    enum Placed {
        No,      // not asked for, or one of the questions spoke against it
        Done,    // it has its name
        Refused, // the server did not rename it
        Unknown, // it was told to, and no answer came
    };
    enum Check {
        Unchecked, // not all of it passed here, or the server does not know checksums
        Same,
        Different,
    };

    Placed placed = No;
    Check check = Unchecked;
};

} // namespace vantrel
