#include "common/media/models/urlindex.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace vantrel {

namespace {

bool isWordCharacter(unsigned char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

unsigned hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned>(lower - 'a' + 10) : 16;
}

/// Letters and digits only, case folded, escapes undone: what a URL may write in more than one way does not
/// count. Nothing for one with an escape that is none.
std::optional<std::size_t> digestOf(std::string_view url)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (std::size_t i = 0; i < url.size(); ++i) {
        auto c = static_cast<unsigned char>(url[i]);
        if (c == '%') {
            const unsigned high = i + 1 < url.size() ? hexDigit(url[i + 1]) : 16;
            const unsigned low = i + 2 < url.size() ? hexDigit(url[i + 2]) : 16;
            if (high > 15 || low > 15)
                return std::nullopt;
            c = static_cast<unsigned char>(high << 4 | low);
            i += 2;
        }
        if (isWordCharacter(c))
            hash = (hash ^ (c >= 'A' && c <= 'Z' ? c + 32U : c)) * 0x100000001b3U;
    }
    return hash;
}

} // namespace

std::size_t UrlIndex::digest(std::string_view url)
{
    // A host may be written in two scripts, and a broken escape is mended as the whole is read.
    if (url.starts_with("file:///")) {
        if (const auto simple = digestOf(url))
            return *simple;
    }
    const QByteArray encoded =
        QUrl(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size()))).toEncoded();
    return digestOf({encoded.constData(), static_cast<std::size_t>(encoded.size())}).value_or(0);
}

void UrlIndex::insert(std::string_view url, const MediaAddress& address)
{
    if (!url.empty())
        m_table->slots.emplace(digest(url), address);
}

void UrlIndex::remove(std::string_view url, const MediaAddress& address)
{
    const auto [begin, end] = m_table->slots.equal_range(digest(url));
    const auto at = std::find_if(begin, end, [&](const auto& item) { return item.second == address; });
    if (at != end)
        m_table->slots.erase(at);
}

QList<MediaAddress> UrlIndex::candidates(const QUrl& url) const
{
    const QByteArray encoded = url.toEncoded();
    const auto [begin, end] =
        m_table->slots.equal_range(digest({encoded.constData(), static_cast<std::size_t>(encoded.size())}));
    QList<MediaAddress> found;
    for (auto it = begin; it != end; ++it)
        found.append(it->second);
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace vantrel
