#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel {

/// A time as a listing gives it: the server's local time, minutes at best.
struct FtpTime
{
    int year = 0; // 0 means that there is no time
    int month = 0, day = 0, hour = 0, minute = 0;
    bool isValid() const { return year != 0; }
    bool operator==(const FtpTime&) const = default;
};

/// One line of a listing. Permissions are the nine bits of UNIX, read for the owner being 0400.
struct FtpListEntry
{
    std::string name; // never with a "/": it names something in the listed folder
    std::string owner, group;
    std::int64_t size = 0; // bytes
    int permissions = 0;
    FtpTime time;
    bool isDirectory = false, isFile = false, isSymLink = false;
    bool isReadable = false, isWritable = false;
    bool operator==(const FtpListEntry&) const = default;
};

/// Reads a line of the form of `ls -l` or of DOS, with or without its end. now: a time without a year lies in
/// the year before rather than more than a day ahead of it. userName: whose rights isReadable and isWritable
/// are, beside everybody's. False when it is neither form, or its name leads elsewhere.
bool parseListLine(std::string_view line, std::string_view userName, const FtpTime& now, FtpListEntry& out);

} // namespace vantrel
