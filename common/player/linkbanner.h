#pragma once

#include "common/ui/toolkit/elidedlabel.h"

namespace vantrel {

class LinkHealth;
class Session;

/// A line across both channels that says how old they are when they are not what the server says now: amber
/// while it does not answer, red once the link is lost. Its room is always kept, so that nothing moves under
/// the hand when it appears, and its sentence is read whole at any width. Stands below the window's header,
/// so that it is seen from every page; main thread.
class LinkBanner : public ElidedLabel
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit LinkBanner(const Session* session, QWidget* parent = nullptr);

    QSize sizeHint() const override;

private:
    /// The link stands again, and the scene is still being read.
    void setReading(bool reading);
    void showHealth();

    const LinkHealth* m_health;
    bool m_isReading = false;
};

} // namespace vantrel
