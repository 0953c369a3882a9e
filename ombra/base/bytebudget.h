#pragma once

#include <cstdint>
#include <memory>

namespace vantrel::ombra {

/// How many bytes all that is large and on its way here may take together, however many connections send it.
/// One thread.
class ByteBudget
{
public:
    /// No more than that is nothing to speak of.
    static constexpr std::uint64_t small = 64 * 1024;

    /// So many bytes; gives them back when the last copy goes, also after the budget itself.
    using Place = std::shared_ptr<const void>;

    explicit ByteBudget(std::uint64_t bytes)
        : m_left(std::make_shared<std::uint64_t>(bytes))
    {
    }

    /// Null when there is no room for so many now.
    Place take(std::uint64_t bytes)
    {
        if (bytes > *m_left)
            return nullptr;
        *m_left -= bytes;
        return {m_left.get(), [left = m_left, bytes](const void*) { *left += bytes; }};
    }

private:
    std::shared_ptr<std::uint64_t> m_left;
};

} // namespace vantrel::ombra
