#include "common/views/playlist/playlistendactioneditor.h"

#include "common/media/address/mediautils.h"
#include "common/ui/style/iconcache.h"

#include <array>

namespace vantrel {

std::span<const EndAction> PlaylistEndActionEditor::actions()
{
    static constexpr std::array all{EndAction::Next, EndAction::Pause, EndAction::Stop, EndAction::Repeat};
    return all;
}

QString PlaylistEndActionEditor::icon(EndAction action)
{
    switch (action) {
    case EndAction::Next:
        return QStringLiteral("mc_next");
    case EndAction::Pause:
        return QStringLiteral("mc_pause");
    case EndAction::Stop:
        return QStringLiteral("mc_stop");
    case EndAction::Repeat:
        return QStringLiteral("repeat");
    default:
        return QStringLiteral("go_to_clip");
    }
}

PlaylistEndActionEditor::PlaylistEndActionEditor(QWidget* parent)
    : ZTDropdownMenu(parent)
{
    setObjectNames(QStringLiteral("Preview-PlaylistEndAction-dropdown"));
    setAccessibleName(tr("End action"));
    setToolTip(tr("What happens when the entry is over"));
    for (const EndAction each : actions())
        addItem(tintedIcon(icon(each)), media::MediaUtils::endActionToHumanReadable(each),
                static_cast<int>(each));
}

EndAction PlaylistEndActionEditor::action() const
{
    return static_cast<EndAction>(currentData().toInt());
}

void PlaylistEndActionEditor::setAction(EndAction action)
{
    setCurrentIndex(findData(static_cast<int>(action)));
}

} // namespace vantrel
