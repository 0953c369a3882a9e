#include "common/playback/mutebutton.h"

namespace vantrel {

MuteButton::MuteButton(QWidget* parent)
    : IconButton(parent)
{
    setToggleIcons(QStringLiteral(":/icons/muted.svg"), QStringLiteral(":/icons/unmuted.svg"));
    setToolTip(tr("Playback control: Toggle audio mute"));
    setAccessibleName(tr("Mute"));
    connect(this, &QPushButton::clicked, this, &MuteButton::muteStateChanged);
}

void MuteButton::setMuted(bool muted)
{
    setChecked(muted);
}

} // namespace vantrel
