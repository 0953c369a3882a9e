#pragma once

#include "common/ui/toolkit/ztcombobox.h"

namespace vantrel {

/// A drop-down used as an editor: chosen() is the operator's choice, also of what was chosen before, and
/// cancelled() tells that the list was closed without one. It can be made editable for a while, to rename
/// what it shows.
class ZTDropdownMenu : public ZTComboBox
{
    Q_OBJECT

public:
    explicit ZTDropdownMenu(QWidget* parent = nullptr);

    /// Turns the shown text into a field with all of it selected and the focus in it.
    void beginEditing();
    /// Ends that and gives back what stands in the field, without blanks at its ends.
    QString endEditing();

    void hidePopup() override;

Q_SIGNALS:
    void chosen(int index);
    void cancelled();

private:
    bool m_chosen = false; // since the list was opened
};

} // namespace vantrel
