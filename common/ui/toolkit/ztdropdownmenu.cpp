#include "common/ui/toolkit/ztdropdownmenu.h"

#include <QAbstractItemView>
#include <QTimer>

namespace vantrel {

ZTDropdownMenu::ZTDropdownMenu(QWidget* parent)
    : ZTComboBox(parent)
{
    setInsertPolicy(NoInsert);
    connect(this, &QComboBox::activated, this, [this](int index) {
        m_chosen = true;
        Q_EMIT chosen(index);
    });
}

void ZTDropdownMenu::hidePopup()
{
    const bool wasOpen = view()->isVisible();
    ZTComboBox::hidePopup();
    if (!wasOpen)
        return;
    // The list closes before it tells of the choice.
    m_chosen = false;
    QTimer::singleShot(0, this, [this] {
        if (!m_chosen)
            Q_EMIT cancelled();
    });
}

} // namespace vantrel
