#pragma once

#include "common/ui/toolkit/elidedlabel.h"

namespace vantrel {

class LinkHealth;

/// One line over both channels that says how old they are when they are not what the server says now: amber
/// while it does not answer, red once the link is lost. Its room is always kept, so that nothing moves under
/// the hand when it appears. Owned by PlayerPlaybackView; main thread.
class LinkBanner : public ElidedLabel
{
    Q_OBJECT

public:
    /// health: must outlive this.
    explicit LinkBanner(const LinkHealth* health, QWidget* parent = nullptr);

    /// The link stands again, and the scene is still being read.
    void setReading(bool reading);

    QSize sizeHint() const override;

private:
    void showHealth();

    const LinkHealth* m_health;
    bool m_isReading = false;
};

} // namespace vantrel
