#pragma once

#include "common/session/settings/fontsize.h"
#include "common/ui/toolkit/ztframe.h"

#include <array>

namespace vantrel {

class OutputItem;
class OutputModel;
class Session;
class ZTMenu;

/// The column of the OUTPUTS tab in which the server's outputs are set, those of the picture and those of the
/// sound. Owned by the tab; main thread.
class OutputView : public ZTFrame
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit OutputView(Session* session, QWidget* parent = nullptr);

    void updateMinimumWidth(FontSize size);
    void showContextMenu();
    /// All outputs and mappings as the server has them from the factory.
    void resetOutputs();
    /// Of output 0 or 1.
    OutputModel* model(int output) const;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QWidget* makeTitleRow();
    void confirmReset();
    void updateUsable();

    Session* m_session;
    ZTMenu* m_menu;
    QWidget* m_items = nullptr;
    std::array<OutputItem*, 2> m_outputs{};
};

} // namespace vantrel
