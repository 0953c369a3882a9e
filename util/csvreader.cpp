#include "util/csvreader.h"

#include <utility>

namespace vantrel {

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

} // namespace

CsvReader::CsvReader(Handler handler)
    : m_handler(std::move(handler))
{
}

void CsvReader::feed(std::string_view bytes)
{
    for (const char c : bytes) {
        if (!m_isStarted) {
            if (c == utf8Mark[m_mark]) {
                m_isStarted = ++m_mark == utf8Mark.size();
                continue;
            }
            m_isStarted = true;
            for (const char held : utf8Mark.substr(0, m_mark))
                take(held);
        }
        take(c);
    }
}

void CsvReader::finish()
{
    if (!m_isStarted) {
        m_isStarted = true;
        for (const char held : utf8Mark.substr(0, m_mark))
            take(held);
    }
    if (m_state == State::Quoted)
        breakOff("a quote is never closed");
    else if (std::exchange(m_hasCr, false))
        breakOff("a line break is broken");
    endRecord();
}

void CsvReader::take(char c)
{
    if (m_record.line == 0)
        m_record.line = m_line;
    if (m_state == State::Quoted) {
        m_isAtLineStart = c == '\n';
        takeQuoted(c);
        return;
    }
    m_isAtLineStart = false;
    if (c == '\n') {
        m_hasCr = false;
        endRecord();
        ++m_line;
        return;
    }
    if (m_state == State::Broken)
        return;
    if (m_hasCr) {
        breakOff("a line break is broken");
        return;
    }
    switch (c) {
    case '\r':
        m_hasCr = true;
        return;
    case ',':
        endField();
        return;
    case '"':
        if (m_state == State::Plain) {
            breakOff("a quote stands inside a field that does not begin with one");
        } else if (m_state == State::QuoteInQuoted) {
            append(c);
            if (m_state != State::Broken)
                m_state = State::Quoted;
        } else {
            m_state = State::Quoted;
        }
        return;
    default:
        if (m_state == State::QuoteInQuoted) {
            breakOff("something follows a closing quote");
            return;
        }
        m_state = State::Plain;
        append(c);
    }
}

void CsvReader::takeQuoted(char c)
{
    if (c == '"') {
        m_state = State::QuoteInQuoted;
        return;
    }
    if (c == '\n')
        ++m_line;
    append(c);
}

void CsvReader::append(char c)
{
    if (m_field.size() >= maxField)
        breakOff("a field is too long");
    else
        m_field += c;
}

void CsvReader::endField()
{
    m_record.fields.push_back(std::exchange(m_field, {}));
    m_state = State::FieldStart;
    if (m_record.fields.size() >= maxFields)
        breakOff("there are too many fields");
}

void CsvReader::breakOff(std::string_view fault)
{
    m_record.fault = fault;
    m_record.fields.clear();
    m_field.clear();
    m_hasCr = false;
    if (m_record.line == 0)
        m_record.line = m_line;
    m_state = State::Broken;
}

void CsvReader::endRecord()
{
    if (m_state != State::Broken && !(m_state == State::FieldStart && m_record.fields.empty()))
        endField();
    m_record.lastLine = std::exchange(m_isAtLineStart, false) ? m_line - 1 : m_line;
    Record record = std::exchange(m_record, {});
    m_state = State::FieldStart;
    m_hasCr = false;
    if (!record.fields.empty() || !record.fault.empty())
        m_handler(std::move(record));
}

} // namespace vantrel
