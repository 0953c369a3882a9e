#pragma once

#include "common/ui/toolkit/iconbutton.h"

#include <QPointer>

class QMenu;

namespace vantrel {

/// A small button that opens a menu beside itself: below it, or above where the screen ends.
class ContextMenuButton : public IconButton
{
    Q_OBJECT

public:
    explicit ContextMenuButton(QWidget* parent = nullptr);
    explicit ContextMenuButton(const QString& icon, QWidget* parent = nullptr);

    /// The menu stays its own owner's.
    void setContextMenu(QMenu* menu);
    void openMenu();

private:
    QPointer<QMenu> m_menu;
};

} // namespace vantrel
