#pragma once

#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

/// A page in place of one that this version does not have: its icon and one sentence.
class PlaceholderView : public ZTFrame
{
    Q_OBJECT

public:
    PlaceholderView(const QString& icon, const QString& text, QWidget* parent = nullptr);
};

} // namespace vantrel
