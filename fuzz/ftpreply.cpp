// Answers of an FTP server: however the stream is cut they are the same, within the limit, and the addresses
// in them are addresses.
#include "tarn/ftp/ftpreply.h"

#include "tarn/ftp/ftpaddress.h"
#include "tarn/ftp/ftppath.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace vantrel;

namespace {

std::vector<FtpReply> read(std::string_view text, std::size_t piece)
{
    std::vector<FtpReply> replies;
    FtpReplyReader reader;
    for (std::size_t at = 0; at < text.size(); at += piece) {
        if (!reader.feed(text.substr(at, piece)))
            break;
        for (FtpReply reply; reader.take(reply);)
            replies.push_back(reply);
    }
    return replies;
}

void check(const FtpReply& reply)
{
    if (reply.code < 100 || reply.code > 559 || reply.code / 10 % 10 > 5 ||
        reply.text.size() > FtpReplyReader::maxReply)
        std::abort();
    FtpAddress address;
    if (parsePassiveReply(reply.text, address)) {
        FtpAddress again;
        if (!parsePassiveReply(portCommand(address.host, address.port), again) ||
            again.host != address.host || again.port != address.port || address.port == 0)
            std::abort();
    }
    std::uint16_t port = 0;
    if (parseExtendedPassiveReply(reply.text, port) && port == 0)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto whole = read(text, size + 1);
    const auto bytewise = read(text, 1);
    const auto pieces = read(text, 7);
    // A stream beyond the limit is given up at another place.
    if (size <= FtpReplyReader::maxReply &&
        (whole.size() != bytewise.size() || whole.size() != pieces.size()))
        std::abort();
    for (std::size_t i = 0; i < whole.size() && i < bytewise.size(); ++i) {
        check(whole[i]);
        if (whole[i].code != bytewise[i].code || whole[i].text != bytewise[i].text)
            std::abort();
    }
    const std::string quoted = quoteListPath(text);
    if (isFtpArgument(text) != isFtpArgument(quoted))
        std::abort();
    return 0;
}
