#include "common/views/playlist/playlisttransitiontypeeditor.h"

#include "common/media/address/mediautils.h"
#include "common/ui/style/iconcache.h"

#include <array>

namespace vantrel {

std::span<const TakeTransitionType> PlaylistTransitionTypeEditor::types()
{
    using Type = TakeTransitionType;
    static constexpr std::array all{Type::Crossfade, Type::DipToColor, Type::DirectCut};
    return all;
}

QString PlaylistTransitionTypeEditor::icon(TakeTransitionType type)
{
    switch (type) {
    case TakeTransitionType::Crossfade:
        return QStringLiteral("crossfade");
    case TakeTransitionType::DipToColor:
        return QStringLiteral("dip");
    default:
        return QStringLiteral("direct_cut");
    }
}

PlaylistTransitionTypeEditor::PlaylistTransitionTypeEditor(QWidget* parent)
    : ZTDropdownMenu(parent)
{
    setObjectNames(QStringLiteral("Preview-PlaylistTransitionType-dropdown"));
    setAccessibleName(tr("Transition"));
    setToolTip(tr("How the entry takes over from the one before it"));
    for (const TakeTransitionType each : types())
        addItem(tintedIcon(icon(each)), media::MediaUtils::transitionTypeToHumanReadable(each),
                static_cast<int>(each));
}

TakeTransitionType PlaylistTransitionTypeEditor::type() const
{
    return static_cast<TakeTransitionType>(currentData().toInt());
}

void PlaylistTransitionTypeEditor::setType(TakeTransitionType type)
{
    setCurrentIndex(findData(static_cast<int>(type)));
}

} // namespace vantrel
