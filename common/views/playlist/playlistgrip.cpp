#include "common/views/playlist/playlistgrip.h"

#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/mimedata.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/ztdrag.h"

#include <QApplication>
#include <QMimeData>
#include <QMouseEvent>

namespace vantrel {

PlaylistGrip::PlaylistGrip(const PlaylistModel* model, QWidget* parent)
    : ZTLabel(parent)
    , m_model(model)
{
    setToolTip(tr("Drag the playlist to program from here"));
    setCursor(Qt::OpenHandCursor);
    followFontSize(this, [this](FontSize size) {
        const int side = iconExtent(size);
        setPixmap(IconCache::pixmap(QStringLiteral("playlist"), colors::getColor(colors::Zt_white_70),
                                    {side, side}, devicePixelRatioF()));
    });
}

void PlaylistGrip::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->position().toPoint();
}

void PlaylistGrip::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint way = event->position().toPoint() - m_pressed;
    if (event->buttons().testFlag(Qt::LeftButton) &&
        way.manhattanLength() >= QApplication::startDragDistance())
        drag();
}

void PlaylistGrip::drag()
{
    const auto list = m_model->playlistProvider()->playlist(m_model->playlistNumber());
    if (list)
        ZTDrag::startDrag(
            this, createMimeData({list->toJson()}, MimeItemCategory::Playlist, MediaItemType::Playlist),
            Qt::CopyAction, tr("Playlist %1: %2").arg(list->number()).arg(shownText(list->name())));
}

} // namespace vantrel
