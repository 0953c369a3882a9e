#include "common/import/pendingdrops.h"

#include <algorithm>
#include <chrono>

namespace vantrel {

using namespace std::chrono_literals;

PendingDrops::PendingDrops(QObject* parent)
    : QObject(parent)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(300ms);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_isTold = true;
        Q_EMIT changed();
    });
}

void PendingDrops::add(QObject* of, const std::function<QString()>& text, const std::function<void()>& giveUp)
{
    m_items.push_back({of, text, giveUp});
    connect(of, &QObject::destroyed, this, &PendingDrops::remove);
    if (m_isTold)
        Q_EMIT changed();
    else if (!m_patience.isActive())
        m_patience.start();
}

void PendingDrops::remove(const QObject* of)
{
    if (std::erase_if(m_items, [of](const Item& item) { return item.of == of; }) == 0)
        return;
    if (m_items.empty()) {
        m_isTold = false;
        m_patience.stop();
    }
    Q_EMIT changed();
}

QString PendingDrops::text() const
{
    if (!m_isTold)
        return {};
    const QString first = m_items.front().text();
    const auto more = static_cast<int>(m_items.size()) - 1;
    return more > 0 ? tr("%1, and %2 more").arg(first).arg(more) : first;
}

void PendingDrops::giveUp()
{
    if (m_items.empty())
        return;
    const std::function<void()> giveUp = m_items.front().giveUp; // it goes meanwhile
    giveUp();
}

} // namespace vantrel
