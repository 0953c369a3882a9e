#include "tarn/discovery/networkinterfaces.h"

#include <algorithm>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>

namespace vantrel {

namespace {

boost::asio::ip::address toAddress(const sockaddr_in& from)
{
    return boost::asio::ip::address_v4(ntohl(from.sin_addr.s_addr));
}

boost::asio::ip::address toAddress(const sockaddr_in6& from)
{
    boost::asio::ip::address_v6::bytes_type bytes;
    std::ranges::copy(from.sin6_addr.s6_addr, bytes.begin());
    return boost::asio::ip::address_v6(bytes, from.sin6_scope_id);
}

} // namespace

std::vector<NetworkInterface> networkInterfaces()
{
    std::vector<NetworkInterface> found;
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return found;
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || !(entry->ifa_flags & IFF_UP))
            continue;
        const unsigned int index = ::if_nametoindex(entry->ifa_name);
        if (entry->ifa_addr->sa_family == AF_INET)
            found.push_back({toAddress(*reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)), index});
        else if (entry->ifa_addr->sa_family == AF_INET6)
            found.push_back({toAddress(*reinterpret_cast<const sockaddr_in6*>(entry->ifa_addr)), index});
    }
    return found;
}

} // namespace vantrel
