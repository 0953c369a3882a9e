#pragma once

#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

class ElidedLabel;
class SlotDrops;

/// Below the slots: what was dropped on them and is not in them yet, and a button that gives it up. There
/// only while there is any.
class PendingDropsBar : public ZTFrame
{
    Q_OBJECT

public:
    /// drops must outlive it.
    explicit PendingDropsBar(SlotDrops* drops, QWidget* parent = nullptr);

private:
    void follow();

    SlotDrops* m_drops;
    ElidedLabel* m_label;
};

} // namespace vantrel
