#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantrel {

/// One answer on the control connection of FTP (RFC 959, 4.2), which may have come in many lines.
struct FtpReply
{
    int code = 0;     // three digits
    std::string text; // lines between the first and the last keep their ends; bytes as they came
};

/// Puts answers together from the pieces in which they arrive. Lines that belong to none are passed over.
class FtpReplyReader
{
public:
    /// What an answer may hold, in bytes, and with it what waits for the end of a line.
    static constexpr std::size_t maxReply = 256 * 1024;

    /// False when an answer goes beyond the limit: the connection is of no use any more.
    bool feed(std::string_view piece);
    /// True and the next whole answer, as long as there is one.
    bool take(FtpReply& out);
    void clear() { *this = {}; }

private:
    bool takeLine(std::string_view& line);
    bool readLine(std::string_view line);

    std::string m_buffer;
    std::size_t m_read = 0;    // of the buffer
    std::size_t m_scanned = 0; // of the buffer, without a line's end behind m_read
    bool m_isOpen = false;     // an answer of several lines
    FtpReply m_reply;
};

} // namespace vantrel
