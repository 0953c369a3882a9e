#include "common/playback/endactionbutton.h"

namespace vantrel {

EndActionButton::EndActionButton(const QString& offIcon, const QString& onIcon, const QString& tip,
                                 QWidget* parent)
    : IconButton(parent)
    , m_tip(tip)
{
    setToggleIcons(onIcon, offIcon);
    setToolTip(tip);
    setAccessibleName(tip);
}

void EndActionButton::setReason(const QString& reason)
{
    setToolTip(reason.isEmpty() ? m_tip : m_tip + u'\n' + reason);
}

} // namespace vantrel
