#pragma once

#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tarn/media/playenums.h"

#include <span>

namespace vantrel {

/// The cell editor of an entry's end action. Owned by the view that it stands in.
class PlaylistEndActionEditor : public ZTDropdownMenu
{
    Q_OBJECT

public:
    explicit PlaylistEndActionEditor(QWidget* parent = nullptr);

    /// Those that are offered.
    static std::span<const EndAction> actions();
    static QString icon(EndAction action);

    EndAction action() const;
    void setAction(EndAction action);
};

} // namespace vantrel
