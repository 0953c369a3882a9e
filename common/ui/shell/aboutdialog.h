#pragma once

#include "common/ui/toolkit/ztdialog.h"

namespace vantrel {

/// Names the application, its version and what it runs on.
class AboutDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent = nullptr);
};

} // namespace vantrel
