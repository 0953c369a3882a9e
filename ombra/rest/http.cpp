#include "ombra/rest/http.h"

#include "ombra/base/percent.h"
#include "tarn/json/json.h"

namespace vantrel::ombra {

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
        if (field.substr(0, equals) == name) {
            const auto value = decodePercent(equals == std::string_view::npos ? std::string_view()
                                                                              : field.substr(equals + 1));
            out = value.value_or(std::string());
            return value.has_value();
        }
    }
    return false;
}

} // namespace vantrel::ombra
