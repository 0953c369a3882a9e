#include "ombra/rest/requestguard.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>

namespace vantrel::ombra {

namespace {

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return lower;
}

/// A host field without its port; false when there is more behind the name than a port.
bool splitHost(std::string_view field, std::string_view& name)
{
    const std::size_t bracket = field.starts_with('[') ? field.find(']') : 0;
    if (bracket == std::string_view::npos)
        return false;
    const std::size_t end = std::min(field.find(':', bracket), field.size());
    name = field.substr(0, end);
    const std::string_view port = field.substr(std::min(end + 1, field.size()));
    return std::ranges::all_of(port, [](char c) { return c >= '0' && c <= '9'; });
}

bool isAddress(std::string_view name)
{
    boost::system::error_code code;
    if (name.starts_with('[') && name.ends_with(']'))
        boost::asio::ip::make_address_v6(std::string(name.substr(1, name.size() - 2)), code);
    else
        boost::asio::ip::make_address_v4(std::string(name), code);
    return !code;
}

} // namespace

RequestGuard::RequestGuard(const std::vector<std::string>& names)
    : m_names{"localhost"}
{
    for (const std::string& name : names) {
        const std::string lower = lowerCase(name);
        const std::string first = lower.substr(0, lower.find('.'));
        m_names.insert({lower, first, first + ".local"});
    }
}

bool RequestGuard::goesBy(std::string_view host) const
{
    std::string_view name;
    if (!splitHost(host, name))
        return false;
    if (name.ends_with('.'))
        name.remove_suffix(1);
    return isAddress(name) || m_names.contains(lowerCase(name));
}

std::optional<HttpReply> RequestGuard::refuse(std::string_view host, std::string_view origin) const
{
    if (host.empty())
        return httpError(400, "the request names no host");
    if (!goesBy(host))
        return httpError(403, "this server does not go by the name \"" + std::string(host) +
                                  "\"; start it with --host-name to let it");
    if (!origin.empty() && lowerCase(origin) != "http://" + lowerCase(host))
        return httpError(403, "a page of " + std::string(origin) + " has no business here");
    return std::nullopt;
}

} // namespace vantrel::ombra
