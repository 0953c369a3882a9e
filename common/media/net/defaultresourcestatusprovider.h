#pragma once

#include "common/media/net/resourcestatusprovider.h"

#include <map>

namespace vantrel {

/// Keeps what the server told last; a channel it never spoke of is not constrained. The session owns one at a
/// time; main thread only.
class DefaultResourceStatusProvider final : public ResourceStatusProvider
{
    Q_OBJECT

public:
    using ResourceStatusProvider::ResourceStatusProvider;

    bool isConstrained(PlaybackViewMode mode) const override;
    void setIsConstrained(PlaybackViewMode mode, bool constrained);

private:
    std::map<PlaybackViewMode, bool> m_constrained;
};

} // namespace vantrel
