#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// Reads comma separated values as RFC 4180 has them, piece by piece: fields in double quotes may hold
/// commas, line ends and doubled quotes, and nothing may stand beside the quotes. A line ends with LF or
/// CRLF; a mark of UTF-8 at the start is passed over. A record that is broken is told with the reason, and
/// reading goes on with the next line. One thread.
class CsvReader
{
public:
    static constexpr std::size_t maxField = 65536; // bytes
    static constexpr std::size_t maxFields = 256;

    struct Record
    {
        int line = 0; // on which it begins, from 1
        int lastLine = 0;
        std::vector<std::string> fields;
        std::string fault; // a clause that says what is wrong; empty for a sound record
    };
    /// Empty lines are no records.
    using Handler = std::function<void(Record&& record)>;

    explicit CsvReader(Handler handler);

    /// Pieces may be cut anywhere.
    void feed(std::string_view bytes);
    /// After the last piece.
    void finish();

private:
    enum class State {
        FieldStart,
        Plain,
        Quoted,
        QuoteInQuoted, // the end of the field, or the first half of a doubled quote
        Broken,        // passes over the rest of the line
    };

    void take(char c);
    void takeQuoted(char c);
    void append(char c);
    void endField();
    void endRecord();
    void breakOff(std::string_view fault);

    Handler m_handler;
    State m_state = State::FieldStart;
    Record m_record;
    std::string m_field;
    int m_line = 1;
    bool m_isAtLineStart = false; // the last byte was the end of a line in a quoted field
    bool m_hasCr = false;         // a CR outside of quotes waits for its LF
    std::size_t m_mark = 0;       // bytes of the mark at the start that were seen
    bool m_isStarted = false;     // past the mark
};

} // namespace vantrel
