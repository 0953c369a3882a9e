#pragma once

#include "tarn/json/json.h"

#include <string>

namespace vantrel {

/// Writes a value as RFC 8259 text. One use each.
class JsonWriter
{
public:
    explicit JsonWriter(bool pretty)
        : m_pretty(pretty)
    {
    }

    std::string write(const Json& json);

private:
    void value(const Json& json);
    void object(const Json& json);
    void array(const Json& json);
    void text(std::string_view text);
    void real(double number);
    void lineBreak();
    void put(char c) { *room(1) = c, ++m_used; }
    void put(std::string_view piece);
    char* room(std::size_t bytes);

    static constexpr std::size_t bufferSize = 16384;
    std::string m_out;
    std::size_t m_used = 0;
    unsigned m_depth = 0;
    bool m_pretty;
    char m_buffer[bufferSize];
};

} // namespace vantrel
