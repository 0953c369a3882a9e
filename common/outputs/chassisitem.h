#pragma once

#include "common/ui/toolkit/collapse.h"

class QSvgWidget;

namespace vantrel {

class ConnectionProvider;
class ZTLabel;

/// The machine itself: its address, and a drawing of its back panel. Owned by the ChassisView; main thread.
class ChassisItem : public Collapse
{
    Q_OBJECT

public:
    /// connection: must outlive this.
    explicit ChassisItem(const ConnectionProvider* connection, QWidget* parent = nullptr);

public Q_SLOTS:
    void onAddressChange();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    const ConnectionProvider* m_connection;
    ZTLabel* m_address;
    QSvgWidget* m_drawing;
};

} // namespace vantrel
