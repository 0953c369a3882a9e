#include "ombra/rest/http.h"

#include "tarn/json/json.h"

namespace vantrel::ombra {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

bool decodePercent(std::string_view text, std::string& out)
{
    out.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        if (i + 2 >= text.size())
            return false;
        const int high = hexDigit(text[i + 1]);
        const int low = hexDigit(text[i + 2]);
        if (high < 0 || low < 0)
            return false;
        out += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return true;
}

} // namespace

HttpReply httpError(unsigned status, const std::string& message)
{
    return {.status = status, .body = Json::object({{"error", message}}).toString()};
}

bool queryValue(std::string_view query, std::string_view name, std::string& out)
{
    while (!query.empty()) {
        const std::size_t end = query.find('&');
        const std::string_view field = query.substr(0, end);
        query = end == std::string_view::npos ? std::string_view() : query.substr(end + 1);
        const std::size_t equals = field.find('=');
        if (field.substr(0, equals) == name)
            return decodePercent(
                equals == std::string_view::npos ? std::string_view() : field.substr(equals + 1), out);
    }
    return false;
}

} // namespace vantrel::ombra
