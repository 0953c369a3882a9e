#pragma once

#include "tarn/json/jsonnode.h"

#include <bit>
#include <cstdint>
#include <string_view>

namespace vantrel {

/// A member's name made ready for many comparisons. Names that stand inline, which most do, compare as two
/// integers: their bytes are padded with zeros, and a shorter name comes first where the bytes are equal.
class JsonName
{
public:
    explicit JsonName(std::string_view text) noexcept
        : m_text(text)
        , m_short(text.size() <= sizeof(Json::Short::text))
    {
        if (m_short) {
            char padded[sizeof(Json::Short::text)] = {};
            if (!text.empty())
                std::memcpy(padded, text.data(), text.size());
            m_words = words(padded);
        }
    }

    std::string_view text() const noexcept { return m_text; }

    /// Below, at or above zero as this name stands before, at or after key.
    int compare(const Json& key) const noexcept
    {
        if (!m_short || key.m_wide.tag != Json::Tag::Short)
            return m_text.compare(key.stringView());
        return compare(m_words, m_text.size(), words(key.m_short.text), key.m_short.size);
    }

    static int compare(const Json& a, const Json& b) noexcept
    {
        if (a.m_wide.tag != Json::Tag::Short || b.m_wide.tag != Json::Tag::Short)
            return a.stringView().compare(b.stringView());
        return compare(words(a.m_short.text), a.m_short.size, words(b.m_short.text), b.m_short.size);
    }

    /// Index of the first of node's entries whose name is not before this one.
    unsigned lowerBound(const JsonNode& node) const noexcept
    {
        unsigned low = 0;
        unsigned high = node.count;
        while (low < high) {
            const unsigned middle = (low + high) / 2;
            if (compare(node.key(middle)) > 0)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    /// Index of the subtree of an inner node in which this name stands if anywhere.
    unsigned childOf(const JsonNode& node) const noexcept
    {
        const unsigned i = lowerBound(node);
        if (i < node.count && compare(node.key(i)) == 0)
            return i;
        return i > 0 ? i - 1 : 0;
    }

private:
    struct Words
    {
        std::uint64_t head; // bytes 0 to 7, the first the most significant
        std::uint64_t tail; // bytes 6 to 13
    };

    static std::uint64_t bigEndian(const char* bytes) noexcept
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
    }
    static Words words(const char* padded) noexcept { return {bigEndian(padded), bigEndian(padded + 6)}; }
    static int compare(Words a, std::size_t sizeA, Words b, std::size_t sizeB) noexcept
    {
        if (a.head != b.head)
            return a.head < b.head ? -1 : 1;
        if (a.tail != b.tail)
            return a.tail < b.tail ? -1 : 1;
        return static_cast<int>(sizeA) - static_cast<int>(sizeB);
    }

    std::string_view m_text;
    Words m_words{0, 0};
    bool m_short;
};

} // namespace vantrel
