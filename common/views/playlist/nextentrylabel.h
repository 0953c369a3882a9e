#pragma once

#include "common/ui/toolkit/elidedlabel.h"

namespace vantrel {

class ListClock;
class Session;

/// What comes after what is on air, by number and name: "Next: 3.5 Applause loop". Hidden while no list
/// plays.
class NextEntryLabel : public ElidedLabel
{
    Q_OBJECT

public:
    /// On program's clock. session: must outlive this.
    explicit NextEntryLabel(Session* session, QWidget* parent = nullptr);

private:
    void refresh();

    ListClock* m_clock;
};

} // namespace vantrel
