#pragma once

#include "ombra/rest/http.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::ombra {

/// Keeps web pages out. A browser that an operator has open beside the show sends what any page asks it to,
/// but says from where (Origin) and for whom (Host): a page of another origin is refused, and so is a request
/// for a name that the server does not go by, which is how a page passes for one of the server's own.
/// Programs that are no browsers send no Origin and name the address that they connect to.
class RequestGuard
{
public:
    /// Beside addresses and "localhost", the server goes by these names, and by the first part of each with
    /// and without ".local".
    explicit RequestGuard(const std::vector<std::string>& names);

    /// What to answer a request with these fields that is not to be served. Empty fields are absent ones.
    std::optional<HttpReply> refuse(std::string_view host, std::string_view origin) const;

private:
    bool goesBy(std::string_view host) const;

    std::set<std::string, std::less<>> m_names; // lower case
};

} // namespace vantrel::ombra
