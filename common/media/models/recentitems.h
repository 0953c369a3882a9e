#pragma once

#include "common/media/address/mediaaddresshash.h"
#include "common/media/models/medialibraryitem.h"

#include <memory>
#include <unordered_map>
#include <utility>

namespace vantrel {

/// The items of slots that somebody looked at lately. An item stays at least until so many others as a
/// generation holds have been made, so that a pointer to it outlives the call that asked for it.
class RecentItems
{
public:
    static constexpr std::size_t generation = 4096;

    /// Null when it was not made lately.
    const MediaLibraryItem* find(const MediaAddress& address)
    {
        if (const auto found = m_young.find(address); found != m_young.end())
            return found->second.get();
        auto node = m_old.extract(address);
        return node ? m_young.insert(std::move(node)).position->second.get() : nullptr;
    }
    const MediaLibraryItem* add(const MediaAddress& address, std::unique_ptr<MediaLibraryItem> item)
    {
        if (m_young.size() >= generation)
            m_old = std::exchange(m_young, {});
        return m_young.emplace(address, std::move(item)).first->second.get();
    }
    void remove(const MediaAddress& address)
    {
        m_young.erase(address);
        m_old.erase(address);
    }
    void clear()
    {
        m_young.clear();
        m_old.clear();
    }

private:
    struct Hash
    {
        std::size_t operator()(const MediaAddress& address) const noexcept { return qHash(address); }
    };
    using Items = std::unordered_map<MediaAddress, std::unique_ptr<MediaLibraryItem>, Hash>;

    Items m_young;
    Items m_old;
};

} // namespace vantrel
