#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel {

/// Where a data connection goes, as an answer to PASV tells it.
struct FtpAddress
{
    std::string host; // "10.0.0.5"
    std::uint16_t port = 0;
};

/// The text of a 227: the first six numbers with commas between them. False when there are none, when one of
/// them is no byte, or when the port is 0.
bool parsePassiveReply(std::string_view text, FtpAddress& out);

/// The text of a 229 (RFC 2428): "(|||port|)" with any delimiter. False when there is none or the port is 0.
bool parseExtendedPassiveReply(std::string_view text, std::uint16_t& port);

/// "PORT h1,h2,h3,h4,p1,p2" with CRLF, for an IPv4 address with dots.
std::string portCommand(std::string_view ipv4, std::uint16_t port);
/// "EPRT |1|address|port|" with CRLF; 2 for IPv6.
std::string extendedPortCommand(std::string_view address, bool isIpv6, std::uint16_t port);

} // namespace vantrel
