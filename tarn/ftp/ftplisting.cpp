#include "tarn/ftp/ftplisting.h"

#include <array>
#include <charconv>
#include <chrono>
#include <optional>

namespace vantrel {

namespace {

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Walks over a line. Each step says whether it was possible.
class Cursor
{
public:
    explicit Cursor(std::string_view text)
        : m_rest(text)
    {
    }
    std::string_view rest() const { return m_rest; }
    bool skip(std::size_t count)
    {
        if (m_rest.size() < count)
            return false;
        m_rest.remove_prefix(count);
        return true;
    }
    /// How many there were.
    std::size_t blanks()
    {
        std::size_t count = 0;
        while (count < m_rest.size() && isBlank(m_rest[count]))
            ++count;
        m_rest.remove_prefix(count);
        return count;
    }
    std::string_view word()
    {
        std::size_t count = 0;
        while (count < m_rest.size() && !isBlank(m_rest[count]))
            ++count;
        const std::string_view word = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return word;
    }

private:
    std::string_view m_rest;
};

template <typename T>
bool readNumber(std::string_view text, T& out)
{
    if (text.empty() || !isDigit(text[0]))
        return false;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    return code == std::errc() && end == text.data() + text.size();
}

/// Minutes from the same zero for all times; nothing for a day that does not exist.
std::optional<std::int64_t> minutesOf(const FtpTime& time)
{
    using namespace std::chrono;
    const year_month_day date{year(time.year), month(static_cast<unsigned>(time.month)),
                              day(static_cast<unsigned>(time.day))};
    if (!date.ok() || time.hour < 0 || time.hour > 23 || time.minute < 0 || time.minute > 59)
        return std::nullopt;
    return std::int64_t{sys_days(date).time_since_epoch().count()} * 1440 + time.hour * 60 + time.minute;
}

FtpTime checked(const FtpTime& time)
{
    return minutesOf(time) ? time : FtpTime{};
}

bool readClock(std::string_view text, FtpTime& time)
{
    const auto colon = text.find(':');
    return colon != std::string_view::npos && colon <= 2 && text.size() == colon + 3 &&
           readNumber(text.substr(0, colon), time.hour) && readNumber(text.substr(colon + 1), time.minute);
}

int monthOf(std::string_view name)
{
    static constexpr std::string_view names = "janfebmaraprmayjunjulaugsepoctnovdec";
    if (name.size() != 3)
        return 0;
    const std::array<char, 3> small{lower(name[0]), lower(name[1]), lower(name[2])};
    for (std::size_t i = 0; i < 12; ++i) {
        if (names.substr(i * 3, 3) == std::string_view(small.data(), small.size()))
            return static_cast<int>(i) + 1;
    }
    return 0;
}

/// A day and a clock without a year: this year's, or the last one's.
FtpTime withYear(FtpTime time, const FtpTime& now)
{
    const auto present = minutesOf(now);
    if (!present)
        return {};
    for (int back = 0; back < 2; ++back) {
        time.year = now.year - back;
        const auto minutes = minutesOf(time);
        if (minutes && *minutes <= *present + 1440)
            return time;
    }
    return {};
}

FtpTime unixTime(std::string_view month, std::string_view day, std::string_view last, const FtpTime& now)
{
    FtpTime time;
    time.month = monthOf(month);
    if (time.month == 0 || day.size() > 2 || !readNumber(day, time.day))
        return {};
    if (readClock(last, time))
        return withYear(time, now);
    return last.size() == 4 && readNumber(last, time.year) ? checked(time) : FtpTime{};
}

/// Owner, group and size. Either name may be empty where more than one blank stands for it.
bool readOwnership(Cursor& cursor, FtpListEntry& entry)
{
    const Cursor start = cursor;
    struct Form
    {
        bool hasOwner, hasGroup;
    };
    for (const Form form : {Form{true, true}, Form{true, false}, Form{false, false}}) {
        cursor = start;
        entry.owner.clear();
        entry.group.clear();
        std::size_t gap = cursor.blanks();
        if (form.hasOwner) {
            entry.owner = cursor.word();
            gap = cursor.blanks();
        }
        if (form.hasGroup) {
            entry.group = cursor.word();
            gap = cursor.blanks() + 1;
        }
        if (gap >= (form.hasOwner ? 2u : 3u) && readNumber(cursor.word(), entry.size) && entry.size >= 0)
            return true;
    }
    return false;
}

bool readKind(std::string_view line, FtpListEntry& entry)
{
    static constexpr std::string_view letters = "rwxrwxrwx";
    if (line.size() < 10 || (line[0] != '-' && line[0] != 'd' && line[0] != 'l'))
        return false;
    entry.isDirectory = line[0] == 'd';
    entry.isFile = line[0] == '-';
    entry.isSymLink = line[0] == 'l';
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const char c = line[i + 1];
        if (c != '-' && !isLetter(c))
            return false;
        if (c == letters[i])
            entry.permissions |= 0400 >> i;
    }
    return true;
}

/// What could name something outside of the listed folder is no entry of it.
bool isNameWithin(std::string_view name)
{
    return !name.empty() && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

bool parseUnix(std::string_view line, std::string_view userName, const FtpTime& now, FtpListEntry& entry)
{
    if (!readKind(line, entry))
        return false;
    Cursor cursor(line);
    cursor.skip(10);
    // Access control lists and security labels leave a mark there.
    if (!cursor.rest().empty() && std::string_view("+.@").find(cursor.rest()[0]) != std::string_view::npos)
        cursor.skip(1);
    std::int64_t links = 0;
    if (cursor.blanks() == 0 || !readNumber(cursor.word(), links) || !readOwnership(cursor, entry))
        return false;
    std::array<std::string_view, 3> date;
    for (std::string_view& part : date) {
        if (cursor.blanks() == 0)
            return false;
        part = cursor.word();
    }
    // Exactly one blank: what follows it belongs to the name.
    if (date[2].empty() || !cursor.skip(1))
        return false;
    std::string_view name = cursor.rest();
    if (entry.isSymLink)
        name = name.substr(0, name.find(" ->"));
    if (!isNameWithin(name))
        return false;
    entry.name = name;
    entry.time = unixTime(date[0], date[1], date[2], now);
    const bool isOwners = entry.owner == userName;
    entry.isReadable = (entry.permissions & 0004) || ((entry.permissions & 0400) && isOwners);
    entry.isWritable = (entry.permissions & 0002) || ((entry.permissions & 0200) && isOwners);
    return true;
}

/// "MM-dd-yy  hh:mmAP", the year also with three or four digits.
bool readDosTime(std::string_view day, std::string_view clock, FtpTime& time)
{
    if (day.size() < 8 || day.size() > 10 || day[2] != '-' || day[5] != '-' || clock.size() != 7 ||
        clock[2] != ':' || (clock[5] != 'A' && clock[5] != 'P') || clock[6] != 'M')
        return false;
    if (!readNumber(day.substr(0, 2), time.month) || !readNumber(day.substr(3, 2), time.day) ||
        !readNumber(day.substr(6), time.year) || !readNumber(clock.substr(0, 2), time.hour) ||
        !readNumber(clock.substr(3, 2), time.minute))
        return false;
    if (day.size() == 8)
        time.year += 1900;
    if (time.year < 1971)
        time.year += 100;
    if (time.hour < 1 || time.hour > 12)
        time.hour = -1; // the line is one, its time is none
    else
        time.hour = time.hour % 12 + (clock[5] == 'P' ? 12 : 0);
    time = checked(time);
    return true;
}

bool endsWith(std::string_view text, std::string_view end)
{
    if (text.size() < end.size())
        return false;
    for (std::size_t i = 0; i < end.size(); ++i) {
        if (lower(text[text.size() - end.size() + i]) != end[i])
            return false;
    }
    return true;
}

bool parseDos(std::string_view line, FtpListEntry& entry)
{
    Cursor cursor(line);
    const std::string_view day = cursor.word();
    if (cursor.rest().substr(0, 2) != "  " || cursor.blanks() != 2)
        return false;
    if (!readDosTime(day, cursor.word(), entry.time) || cursor.blanks() == 0)
        return false;
    const std::string_view size = cursor.word();
    entry.isDirectory = size == "<DIR>";
    entry.isFile = !entry.isDirectory;
    if ((entry.isFile && (!readNumber(size, entry.size) || entry.size < 0)) || cursor.blanks() == 0 ||
        !isNameWithin(cursor.rest()))
        return false;
    entry.name = cursor.rest();
    entry.isSymLink = endsWith(entry.name, ".lnk");
    const bool isProgram =
        endsWith(entry.name, ".exe") || endsWith(entry.name, ".bat") || endsWith(entry.name, ".com");
    entry.permissions = isProgram ? 0777 : 0666;
    entry.isReadable = true;
    entry.isWritable = entry.isFile;
    return true;
}

} // namespace

bool parseListLine(std::string_view line, std::string_view userName, const FtpTime& now, FtpListEntry& out)
{
    line = line.substr(0, line.find_first_of("\r\n"));
    FtpListEntry entry;
    if (!parseUnix(line, userName, now, entry)) {
        entry = {};
        if (!parseDos(line, entry))
            return false;
    }
    out = std::move(entry);
    return true;
}

} // namespace vantrel
