#pragma once

#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QUrl>

#include <memory>
#include <memory_resource>
#include <string_view>
#include <unordered_map>

namespace vantrel {

/// Finds the slots whose content may be at a URL. Keys are a digest that all spellings of a URL share, made
/// without parsing it: who asks compares the URLs of what is found.
class UrlIndex
{
public:
    void clear() { m_table = std::make_unique<Table>(); }
    /// Room for so many: a table that grows while it is filled holds the window up.
    void reserve(std::size_t count) { m_table->slots.reserve(count); }
    void insert(std::string_view url, const MediaAddress& address);
    void remove(std::string_view url, const MediaAddress& address);
    /// In address order.
    QList<MediaAddress> candidates(const QUrl& url) const;

private:
    static std::size_t digest(std::string_view url);

    /// From memory of its own, so that to free a long one aside does not keep the main thread from its
    /// memory.
    struct Table
    {
        std::pmr::unsynchronized_pool_resource memory;
        std::pmr::unordered_multimap<std::size_t, MediaAddress> slots{&memory};
    };
    std::unique_ptr<Table> m_table = std::make_unique<Table>();
};

} // namespace vantrel
