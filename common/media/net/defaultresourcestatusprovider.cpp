#include "common/media/net/defaultresourcestatusprovider.h"

namespace vantrel {

bool DefaultResourceStatusProvider::isConstrained(PlaybackViewMode mode) const
{
    const auto known = m_constrained.find(mode);
    return known != m_constrained.end() && known->second;
}

void DefaultResourceStatusProvider::setIsConstrained(PlaybackViewMode mode, bool constrained)
{
    const bool changed = isConstrained(mode) != constrained;
    m_constrained[mode] = constrained;
    if (changed)
        Q_EMIT isConstrainedChanged(mode);
}

} // namespace vantrel
