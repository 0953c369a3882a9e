#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// One step of a path: a member's name or a decimal index, unescaped UTF-8.
class PathElement
{
public:
    PathElement() = default;
    explicit PathElement(std::string text)
        : m_text(std::move(text))
    {
    }

    const std::string& text() const noexcept { return m_text; }
    /// True, and the number in out, when the text is a decimal index that fits.
    bool parseIndex(long long* out) const noexcept;

    friend bool operator==(const PathElement&, const PathElement&) = default;

private:
    std::string m_text;
};

/// An ordered list of elements. The text form is that of RFC 6901: "/" before each element, "~" written "~0"
/// and
/// "/" written "~1"; the empty path is the empty text and names the whole document.
class Path
{
public:
    Path() = default;
    /// Reads the text form; text without a leading "/" gets one, a trailing "/" is dropped, and a "~" that
    /// escapes nothing stands for itself. Use parse() where the text comes from outside.
    explicit Path(std::string_view text);
    Path(std::initializer_list<std::string_view> elements);

    /// Strict reading as RFC 6901 has it; false (and an empty path) on text that is no pointer.
    static bool parse(std::string_view text, Path& out);

    std::string toString() const;
    bool empty() const noexcept { return m_elements.empty(); }
    std::size_t size() const noexcept { return m_elements.size(); }
    const PathElement& operator[](std::size_t i) const noexcept { return m_elements[i]; }
    const PathElement& back() const noexcept { return m_elements.back(); }
    Path parent() const;
    void append(std::string element) { m_elements.emplace_back(std::move(element)); }
    void reserve(std::size_t elements) { m_elements.reserve(elements); }

    auto begin() const noexcept { return m_elements.begin(); }
    auto end() const noexcept { return m_elements.end(); }

    friend Path operator+(const Path& a, const Path& b);
    friend bool operator==(const Path&, const Path&) = default;

private:
    std::vector<PathElement> m_elements;
};

/// A view of a path's elements; the Path must outlive it.
class PathView
{
public:
    PathView() = default;
    PathView(const Path& path) noexcept
        : m_begin(path.empty() ? nullptr : &path[0])
        , m_size(path.size())
    {
    }
    PathView(const PathElement* begin, std::size_t size) noexcept
        : m_begin(begin)
        , m_size(size)
    {
    }

    bool empty() const noexcept { return m_size == 0; }
    std::size_t size() const noexcept { return m_size; }
    const PathElement& operator[](std::size_t i) const noexcept { return m_begin[i]; }
    const PathElement& back() const noexcept { return m_begin[m_size - 1]; }
    PathView first(std::size_t count) const noexcept { return {m_begin, count}; }
    PathView from(std::size_t start) const noexcept { return {m_begin + start, m_size - start}; }
    const PathElement* begin() const noexcept { return m_begin; }
    const PathElement* end() const noexcept { return m_begin + m_size; }
    Path toPath() const;
    std::string toString() const;

    friend bool operator==(PathView a, PathView b) noexcept
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    const PathElement* m_begin = nullptr;
    std::size_t m_size = 0;
};

} // namespace vantrel
