#include "tarn/media/entrynumberingplan.h"

#include <algorithm>

namespace vantrel {

EntryNumberingPlan EntryNumberingPlan::between(const EntryAddress& after, const EntryAddress& before,
                                               int count)
{
    const int needed = std::max(count, 1);
    EntryNumberingPlan plan;

    const int firstWhole = after.isValid() ? after.major + 1 : 1;
    int lastWhole = EntryAddress::maxMajor;
    if (before.isValid())
        lastWhole = before.minor > 0 ? before.major : before.major - 1;
    if (lastWhole - firstWhole + 1 >= needed) {
        plan.m_valid = true;
        plan.m_first = {firstWhole, 0};
        return plan;
    }
    const EntryAddress start = after.isValid() ? after : EntryAddress();
    const bool sameWhole = before.isValid() && before.major == start.major;
    const int lastDecimal = sameWhole ? before.minor - 1 : EntryAddress::maxMinor;
    if (lastDecimal - start.minor >= needed) {
        plan.m_valid = true;
        plan.m_decimals = true;
        plan.m_first = {start.major, after.isValid() ? start.minor + 1 : lastDecimal - needed + 1};
        return plan;
    }
    // Nothing to place always fits; its first address is never used.
    if (count == 0 && before.isValid()) {
        plan.m_valid = true;
        plan.m_first = after.isValid() ? after : before;
    }
    return plan;
}

EntryAddress EntryNumberingPlan::advance(const EntryAddress& address) const noexcept
{
    const EntryAddress next =
        m_decimals ? EntryAddress(address.major, address.minor + 1) : EntryAddress(address.major + 1, 0);
    return m_valid && next.isValid() ? next : EntryAddress();
}

} // namespace vantrel
