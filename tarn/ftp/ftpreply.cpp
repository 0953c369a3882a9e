#include "tarn/ftp/ftpreply.h"

namespace vantrel {

namespace {

bool isBetween(char c, char low, char high)
{
    return c >= low && c <= high;
}

/// 0 where the line begins with no code.
int codeOf(std::string_view line)
{
    if (line.size() < 3 || !isBetween(line[0], '1', '5') || !isBetween(line[1], '0', '5') ||
        !isBetween(line[2], '0', '9'))
        return 0;
    return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

std::string_view withoutEnd(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

std::string_view afterCode(std::string_view line)
{
    return line.size() > 4 ? line.substr(4) : std::string_view();
}

} // namespace

bool FtpReplyReader::feed(std::string_view piece)
{
    if (m_read > 0) {
        m_buffer.erase(0, m_read);
        m_scanned -= m_read;
        m_read = 0;
    }
    if (m_buffer.size() + m_reply.text.size() + piece.size() > maxReply)
        return false;
    m_buffer += piece;
    return true;
}

bool FtpReplyReader::take(FtpReply& out)
{
    for (std::string_view line; takeLine(line);) {
        if (!readLine(line))
            continue;
        out = std::move(m_reply);
        m_reply = {};
        return true;
    }
    return false;
}

/// The line with its end.
bool FtpReplyReader::takeLine(std::string_view& line)
{
    const auto end = m_buffer.find('\n', m_scanned);
    if (end == std::string::npos) {
        m_scanned = m_buffer.size();
        return false;
    }
    line = std::string_view(m_buffer).substr(m_read, end + 1 - m_read);
    m_read = m_scanned = end + 1;
    return true;
}

/// True when the line ends an answer.
bool FtpReplyReader::readLine(std::string_view line)
{
    const std::string_view content = withoutEnd(line);
    const int code = codeOf(content);
    const char mark = content.size() > 3 ? content[3] : ' ';
    if (!m_isOpen) {
        if (code == 0)
            return false;
        m_reply.code = code;
        m_isOpen = mark == '-';
        m_reply.text = m_isOpen ? afterCode(line) : afterCode(content);
        return !m_isOpen;
    }
    if (code == m_reply.code && mark == ' ') {
        m_reply.text += afterCode(content);
        m_isOpen = false;
        return true;
    }
    m_reply.text += code == m_reply.code && mark == '-' ? afterCode(line) : line;
    return false;
}

} // namespace vantrel
