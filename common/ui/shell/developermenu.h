#pragma once

#include "common/ui/toolkit/ztmenu.h"

namespace vantrel {

/// Tools for those who build the application: reached by key only.
class DeveloperMenu : public ZTMenu
{
    Q_OBJECT

public:
    explicit DeveloperMenu(QWidget* parent = nullptr);

    /// Loads the style sheet anew and dresses the application in it.
    static void reloadStyle();
};

} // namespace vantrel
