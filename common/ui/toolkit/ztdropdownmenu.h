#pragma once

#include "common/ui/toolkit/ztcombobox.h"

namespace vantrel {

/// A drop-down used as an editor: chosen() is the operator's choice, also of what was chosen before, and
/// cancelled() tells that the list was closed without one.
class ZTDropdownMenu : public ZTComboBox
{
    Q_OBJECT

public:
    explicit ZTDropdownMenu(QWidget* parent = nullptr);

    void hidePopup() override;

Q_SIGNALS:
    void chosen(int index);
    void cancelled();

private:
    bool m_chosen = false; // since the list was opened
};

} // namespace vantrel
