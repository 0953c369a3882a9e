#include "common/playback/mutebutton.h"

#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"

namespace vantrel {

MuteButton::MuteButton(QWidget* parent)
    : IconButton(parent)
{
    setToggleIcons(QStringLiteral(":/icons/muted.svg"), QStringLiteral(":/icons/unmuted.svg"));
    setCheckedColor(colors::getColor(colors::Red_error));
    setHotkeyTip(this, tr("Playback control: Toggle audio mute"), {QStringLiteral("mute_program")});
    setAccessibleName(tr("Mute"));
    connect(this, &QPushButton::clicked, this, &MuteButton::muteStateChanged);
}

void MuteButton::setMuted(bool muted)
{
    setChecked(muted);
}

} // namespace vantrel
