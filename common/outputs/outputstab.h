#pragma once

#include <QWidget>

namespace vantrel {

class ChassisView;
class MappingPreview;
class OutputView;
class Session;

/// The OUTPUTS tab: the machine, what its outputs carry, and how they are set. The settings have room first,
/// then the pictures, then the machine. Owned by the main window; main thread.
class OutputsTab : public QWidget
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit OutputsTab(Session* session, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void divide();

    ChassisView* m_chassis;
    OutputView* m_properties;
    MappingPreview* m_mapping;
};

} // namespace vantrel
