#pragma once

#include <QByteArray>
#include <QCollatorSortKey>
#include <QStringList>

#include <vector>

namespace vantrel {

/// Names as a reader sorts them: "Clip 2" before "clip 10". What they compare by is made once a name. A
/// value; any thread.
class NameOrder
{
public:
    explicit NameOrder(const QStringList& names);

    /// Of two names by their places in the list: below, equal to or above 0 as the first comes before, with
    /// or behind the second.
    int compare(std::size_t a, std::size_t b) const
    {
        return m_plain.empty() ? m_collated[a].compare(m_collated[b]) : m_plain[a].compare(m_plain[b]);
    }

private:
    std::vector<QByteArray> m_plain; // or else:
    std::vector<QCollatorSortKey> m_collated;
};

/// The names in their order, those that a reader takes for equal by their letters.
QStringList inNameOrder(const QStringList& names);

} // namespace vantrel
