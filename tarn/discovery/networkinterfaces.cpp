#include "tarn/discovery/networkinterfaces.h"

#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>

namespace vantrel {

std::vector<boost::asio::ip::address_v4> interfaceAddresses()
{
    std::vector<boost::asio::ip::address_v4> addresses;
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return addresses;
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET || !(entry->ifa_flags & IFF_UP))
            continue;
        const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
        addresses.emplace_back(ntohl(address->sin_addr.s_addr));
    }
    return addresses;
}

} // namespace vantrel
