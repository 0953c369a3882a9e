#pragma once

#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tarn/media/playenums.h"

#include <span>

namespace vantrel {

/// The cell editor of an entry's transition. Owned by the view that it stands in.
class PlaylistTransitionTypeEditor : public ZTDropdownMenu
{
    Q_OBJECT

public:
    explicit PlaylistTransitionTypeEditor(QWidget* parent = nullptr);

    static std::span<const TakeTransitionType> types();
    static QString icon(TakeTransitionType type);

    TakeTransitionType type() const;
    void setType(TakeTransitionType type);
};

} // namespace vantrel
