#pragma once

#include "tarn/json/json.h"

#include <string>
#include <string_view>

namespace vantrel {

/// Reads one JSON text. Values wait on a stack of their own until their container closes and is built in one
/// go. One use each.
class JsonParser
{
public:
    explicit JsonParser(std::string_view text)
        : m_begin(text.data())
        , m_at(text.data())
        , m_end(text.data() + text.size())
    {
    }
    JsonParser(const JsonParser&) = delete;
    JsonParser& operator=(const JsonParser&) = delete;
    ~JsonParser();

    bool parse(Json& out, std::string* error);

private:
    enum class Role { Key, Value };

    bool value();
    bool object();
    bool array();
    bool members();
    bool closeObject(std::size_t base);
    bool string(Role role);
    bool shortString();
    bool escapedString(const char* start, Role role);
    bool escape();
    bool hexQuad(char32_t& out);
    bool number();
    bool digits(std::uint64_t& number);
    bool fractionOrExponent(const char* start, std::uint64_t mantissa);
    bool wholeNumber(const char* start, std::uint64_t magnitude);
    bool literal(std::string_view word, Json value);
    bool fail(const char* what);
    const char* plainRun(const char* p) const noexcept;

    void skipBlanks() noexcept
    {
        while (m_at < m_end && static_cast<unsigned char>(*m_at) <= ' ' &&
               (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t'))
            ++m_at;
    }
    bool next(char c) noexcept
    {
        if (m_at == m_end || *m_at != c)
            return false;
        ++m_at;
        return true;
    }
    void push(Json value)
    {
        if (m_size == m_capacity)
            grow();
        new (m_stack + m_size++) Json(std::move(value));
    }
    void grow();

    const char* m_begin;
    const char* m_at;
    const char* m_end;
    const char* m_what = nullptr;
    int m_depth = 0;
    std::string m_text; // a string with escapes
    Json* m_stack = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace vantrel
