#pragma once

#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QUrl>

#include <string_view>
#include <unordered_map>

namespace vantrel {

/// Finds the slots whose content may be at a URL. Keys are a digest that all spellings of a URL share, made
/// without parsing it: who asks compares the URLs of what is found.
class UrlIndex
{
public:
    void clear() { m_slots.clear(); }
    void insert(std::string_view url, const MediaAddress& address);
    void remove(std::string_view url, const MediaAddress& address);
    /// In address order.
    QList<MediaAddress> candidates(const QUrl& url) const;

private:
    static std::size_t digest(std::string_view url);

    std::unordered_multimap<std::size_t, MediaAddress> m_slots;
};

} // namespace vantrel
