#pragma once

#include "common/session/settings/fontsize.h"
#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

class ConnectionProvider;

/// The column of the OUTPUTS tab that shows the machine. Owned by the tab; main thread.
class ChassisView : public ZTFrame
{
    Q_OBJECT

public:
    /// connection: must outlive this.
    explicit ChassisView(const ConnectionProvider* connection, QWidget* parent = nullptr);

    void updateMinimumWidth(FontSize size);
};

} // namespace vantrel
