#include "tarn/json/path.h"

#include <algorithm>
#include <charconv>

namespace vantrel {

namespace {

/// One element's text form read; false when a "~" escapes nothing, and then it stands for itself in out.
bool unescape(std::string_view text, std::string& out)
{
    bool good = true;
    out.clear();
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] != '~') {
            out += text[i];
        } else if (next == '0' || next == '1') {
            out += next == '0' ? '~' : '/';
            ++i;
        } else {
            good = false;
            out += '~';
        }
    }
    return good;
}

void appendEscaped(std::string& out, std::string_view element)
{
    out += '/';
    if (element.find_first_of("~/") == std::string_view::npos) {
        out += element;
        return;
    }
    for (const char c : element) {
        if (c == '~')
            out += "~0";
        else if (c == '/')
            out += "~1";
        else
            out += c;
    }
}

/// Splits what follows the leading slash; true when all escapes are good.
bool split(std::string_view text, std::vector<PathElement>& out)
{
    bool good = true;
    out.reserve(static_cast<std::size_t>(std::ranges::count(text, '/')) + 1);
    for (;;) {
        const std::size_t slash = text.find('/');
        std::string element;
        good &= unescape(text.substr(0, slash), element);
        out.emplace_back(std::move(element));
        if (slash == std::string_view::npos)
            return good;
        text.remove_prefix(slash + 1);
    }
}

} // namespace

bool PathElement::parseIndex(long long* out) const noexcept
{
    const char* const end = m_text.data() + m_text.size();
    if (m_text.empty() || m_text[0] < '0' || m_text[0] > '9' || (m_text[0] == '0' && m_text.size() > 1))
        return false;
    long long index = 0;
    const auto [at, code] = std::from_chars(m_text.data(), end, index);
    if (code != std::errc() || at != end)
        return false;
    if (out)
        *out = index;
    return true;
}

Path::Path(std::string_view text)
{
    if (text.starts_with('/'))
        text.remove_prefix(1);
    if (text.ends_with('/'))
        text.remove_suffix(1);
    if (!text.empty())
        split(text, m_elements);
}

Path::Path(std::initializer_list<std::string_view> elements)
{
    m_elements.reserve(elements.size());
    for (const std::string_view element : elements)
        m_elements.emplace_back(std::string(element));
}

bool Path::parse(std::string_view text, Path& out)
{
    out.m_elements.clear();
    if (text.empty())
        return true;
    if (!text.starts_with('/'))
        return false;
    if (split(text.substr(1), out.m_elements))
        return true;
    out.m_elements.clear();
    return false;
}

std::string Path::toString() const
{
    return PathView(*this).toString();
}

Path Path::parent() const
{
    Path path;
    if (!empty())
        path.m_elements.assign(m_elements.begin(), m_elements.end() - 1);
    return path;
}

Path operator+(const Path& a, const Path& b)
{
    Path path;
    path.m_elements.reserve(a.size() + b.size());
    path.m_elements = a.m_elements;
    path.m_elements.insert(path.m_elements.end(), b.m_elements.begin(), b.m_elements.end());
    return path;
}

Path PathView::toPath() const
{
    Path path;
    path.reserve(m_size);
    for (const PathElement& element : *this)
        path.append(element.text());
    return path;
}

std::string PathView::toString() const
{
    std::string text;
    text.reserve(16 * m_size);
    for (const PathElement& element : *this)
        appendEscaped(text, element.text());
    return text;
}

} // namespace vantrel
