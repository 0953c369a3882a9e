#include "common/outputs/outputpicture.h"

#include "common/media/address/showntext.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/outputs/outputcanvas.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/outputtexts.h"
#include "common/outputs/scalingtile.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/seenupdate.h"
#include "tarn/media/mediaenums.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int oldPicture = 1000; // milliseconds
constexpr int tilePause = 200;   // milliseconds between two pictures of the tiles
const QString previewTarget = QStringLiteral("preview");

QSizeF sizeOf(const MediaMetadataPtr& metadata)
{
    if (!metadata)
        return {};
    const auto& pictures = metadata->getVideo() ? metadata->getVideo() : metadata->getImage();
    if (!pictures || !pictures->width || !pictures->height)
        return {};
    const auto aspect = pictures->pixelAspect;
    const double stretch =
        aspect && aspect->num > 0 && aspect->den > 0 ? double(aspect->num) / aspect->den : 1;
    return {*pictures->width * stretch, double(*pictures->height)};
}

/// What is said in the place of a slot's name. What is on air plays on when the library has it no more.
QString withoutSlot(const GUIPlayback* playback)
{
    const QString held = playback ? playback->heldMedia() : QString();
    if (!held.isEmpty())
        return OutputPicture::tr("No longer in the library: %1").arg(shownText(QUrl(held).fileName()));
    return playback && !playback->media().isEmpty() ? OutputPicture::tr("Not in the library any more")
                                                    : OutputPicture::tr("Nothing is loaded");
}

} // namespace

OutputPicture::OutputPicture(int index, Session* session, OutputModel* model, QWidget* parent)
    : ZTFrame(parent)
    , m_index(index)
    , m_session(session)
    , m_model(model)
    , m_canvas(new OutputCanvas(this))
    , m_medium(new ElidedLabel(this))
{
    m_canvas->setObjectName(QStringLiteral("Mapping-output%1-picture").arg(index + 1));
    m_canvas->setAccessibleName(tr("Picture of output %1").arg(index + 1));
    m_medium->setObjectNames(QStringLiteral("Mapping-output%1-medium").arg(index + 1));
    m_medium->setStyleClass(QStringLiteral("dim"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    layout->addWidget(makeHeader());
    layout->addWidget(m_canvas, 1);
    layout->addWidget(m_medium);
    layout->addWidget(makeTiles());

    m_refresh = new SeenUpdate(this, [this] { refresh(); });
    connect(&m_ageCheck, &QTimer::timeout, this, &OutputPicture::checkAge);
    m_ageCheck.start(oldPicture / 2);
    connect(model, &OutputModel::dataChanged, this, [this] { m_refresh->ask(); });
    followMedia();
    followFontSize(this, [this](FontSize) { labelTiles(); });
    refresh();
}

QWidget* OutputPicture::makeHeader()
{
    auto* row = new QWidget(this);
    m_target = new ZTLabel(row);
    m_target->setObjectNames(QStringLiteral("Mapping-output%1-target").arg(m_index + 1));
    m_title = new ElidedLabel(row);
    m_title->setStyleClass(QStringLiteral("section"));
    m_title->setObjectNames(QStringLiteral("Mapping-output%1-title").arg(m_index + 1));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    layout->addWidget(m_target);
    layout->addWidget(m_title, 1);
    return row;
}

QWidget* OutputPicture::makeTiles()
{
    auto* strip = new QWidget(this);
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::tight);
    for (const ScalingMode& mode : scalingModes()) {
        auto* tile = new ScalingTile(mode, strip);
        tile->setObjectName(QStringLiteral("Mapping-output%1-scaling-%2").arg(m_index + 1).arg(mode.value));
        connect(tile, &ScalingTile::clicked, this, [this, tile] { choose(tile); });
        connect(tile, &ScalingTile::lookedAt, this, [this, tile](bool looked) { propose(tile, looked); });
        row->addWidget(tile, 1);
        m_tiles.append(tile);
    }
    return strip;
}

/// Their names are left out where not all of them fit.
void OutputPicture::labelTiles()
{
    int widest = 0;
    for (const ScalingTile* tile : std::as_const(m_tiles))
        widest = std::max(widest, tile->labelledWidth());
    const auto count = static_cast<int>(m_tiles.size());
    const bool fits = count * widest + (count - 1) * spacing::tight <= width();
    for (ScalingTile* tile : std::as_const(m_tiles))
        tile->setLabelled(fits);
}

void OutputPicture::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    labelTiles();
}

void OutputPicture::followMedia()
{
    const auto later = [this] { m_refresh->ask(); };
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    for (const GUIPlayback* playback : {scene->previewPlayback().data(), scene->programPlayback().data()}) {
        connect(playback, &GUIPlayback::mediaChanged, this, later);
        connect(playback, &GUIPlayback::heldMediaChanged, this, later);
        connect(playback, &GUIPlayback::reset, this, later);
    }
    const MediaLibraryProvider* library = m_session->mediaLibraryProvider();
    connect(library, &MediaLibraryProvider::slotAdded, this, later);
    connect(library, &MediaLibraryProvider::slotChanged, this, later);
    connect(library, &MediaLibraryProvider::slotRemoved, this, later);
    connect(library, &MediaLibraryProvider::collectionAdded, this, later);
    connect(library, &MediaLibraryProvider::collectionRemoved, this, later);
    connect(library, &MediaLibraryProvider::reset, this, later);
    const PlaylistProvider* playlists = m_session->playlistProvider();
    connect(playlists, &PlaylistProvider::entryAdded, this, later);
    connect(playlists, &PlaylistProvider::entryChanged, this, later);
    connect(playlists, &PlaylistProvider::entryRemoved, this, later);
    connect(playlists, &PlaylistProvider::playlistRemoved, this, later);
    connect(playlists, &PlaylistProvider::reset, this, later);
    const MediaDataAggregator* media = m_session->mediaDataAggregator();
    connect(media, &MediaDataAggregator::metadataChanged, this, later);
    connect(media, &MediaDataAggregator::thumbnailChanged, this, later);
}

QVariant OutputPicture::value(int column) const
{
    return m_model->index(0, column).data();
}

/// Of the channel that the output carries; null for an output of none.
GUIPlayback* OutputPicture::playback() const
{
    const QString target = value(OutputModel::TargetColumn).toString();
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    return target.isEmpty()          ? nullptr
           : target == previewTarget ? scene->previewPlayback()
                                     : scene->programPlayback();
}

void OutputPicture::refresh()
{
    const QString target = value(OutputModel::TargetColumn).toString();
    const bool isPreview = target == previewTarget;
    m_target->setText(isPreview ? tr("PREVIEW") : tr("PROGRAM"));
    m_target->setStyleClass(isPreview ? QStringLiteral("preview") : QStringLiteral("program"));
    m_target->setVisible(!target.isEmpty());
    const QSize size(value(OutputModel::WidthColumn).toInt(), value(OutputModel::HeightColumn).toInt());
    QStringList title{tr("Output %1").arg(m_index + 1)};
    for (const QString& part : {value(OutputModel::NameColumn).toString(),
                                size.isEmpty() ? QString() : sizeText(size.width(), size.height()),
                                value(OutputModel::FieldFrequencyColumn).toString()}) {
        if (!part.isEmpty() && part != unknownText)
            title.append(part);
    }
    m_title->setText(title.join(QStringLiteral(" · ")));
    m_canvas->setOutputSize(size);
    m_canvas->setFrameColor(colors::getColor(target.isEmpty() ? colors::Zt_white_30
                                             : isPreview      ? colors::Green_green
                                                              : colors::Zt_red));
    m_canvas->setBackground(value(OutputModel::BackgroundColorColumn).value<QColor>());
    refreshMedium();
    checkAge();
}

void OutputPicture::refreshMedium()
{
    const GUIPlayback* playing = playback();
    const auto slot = playing ? playing->playingSlot() : nullptr;
    m_mediaUrl = slot ? slot->contentUrl() : QUrl();
    m_mediaSize = slot ? sizeOf(m_session->mediaDataAggregator()->metadata(m_mediaUrl)) : QSizeF();
    const QString chosen = value(OutputModel::ScalingColumn).toString();
    const bool hasOwn = slot && slot->scaleMode() != ScaleMode::Default;
    m_scaling = hasOwn ? QString::fromLatin1(toStr(slot->scaleMode())) : chosen;
    const QSizeF output = m_canvas->outputSize();
    const ScalingGeometry placement(m_scaling, m_mediaSize, output);
    m_canvas->setPlacement(m_mediaSize.isEmpty() ? std::nullopt : std::optional(placement));
    for (ScalingTile* tile : std::as_const(m_tiles)) {
        tile->setEnabled(playing);
        tile->setChecked(tile->scaling() == chosen);
        tile->setMedium(m_mediaSize, output, value(OutputModel::BackgroundColorColumn).value<QColor>());
    }
    QStringList medium(slot ? slot->name() : withoutSlot(playing));
    if (!m_mediaSize.isEmpty())
        medium << sizeText(qRound(m_mediaSize.width()), qRound(m_mediaSize.height()))
               << tr("%1: %2").arg(scalingLabel(m_scaling), placement.description());
    if (hasOwn)
        medium.append(tr("set in the slot, whatever the output's scaling"));
    m_mediumText = medium.join(QStringLiteral(" · "));
    m_isOwnScaling = hasOwn;
    showProposal();
    refreshTilePictures();
}

/// The whole medium: out of the live picture where that shows all of it, else its thumbnail.
void OutputPicture::refreshTilePictures()
{
    m_sinceTiles.start();
    QPixmap whole;
    const QSizeF output = m_canvas->outputSize();
    const ScalingGeometry placement(m_scaling, m_mediaSize, output);
    if (!m_mediaSize.isEmpty() && !m_picture.isNull() && !placement.isCut()) {
        const QRectF part = outputPart(m_picture.size(), output);
        const double scale = part.width() / output.width();
        const QRectF& picture = placement.picture();
        whole = m_picture.copy(
            QRectF(part.topLeft() + picture.topLeft() * scale, picture.size() * scale).toAlignedRect());
    } else if (!m_mediaSize.isEmpty()) {
        if (const ThumbnailPtr thumbnail = m_session->mediaDataAggregator()->thumbnail(m_mediaUrl))
            whole = *thumbnail;
    }
    for (ScalingTile* tile : std::as_const(m_tiles))
        tile->setPicture(whole);
}

void OutputPicture::onFrame(const PreviewFrame& frame, const QPixmap& pixmap)
{
    const QString target = value(OutputModel::TargetColumn).toString();
    if (target.isEmpty() || !isVisible())
        return;
    const char* source =
        target == previewTarget ? "/device/channels/0/preview" : "/device/channels/0/program";
    if (frame.source != source || frame.frame.getStreamIndex() != 0)
        return;
    m_picture = pixmap;
    m_sincePicture.start();
    m_canvas->setPicture(pixmap);
    m_canvas->setNotice(notice());
    if (!m_sinceTiles.isValid() || m_sinceTiles.elapsed() > tilePause)
        refreshTilePictures();
}

void OutputPicture::checkAge()
{
    m_canvas->setNotice(notice());
}

/// What the picture alone would not tell.
QString OutputPicture::notice() const
{
    if (!value(OutputModel::ConnectedColumn).toBool())
        return tr("No display is connected");
    if (value(OutputModel::TargetColumn).toString().isEmpty())
        return tr("Carries nothing");
    if (!m_sincePicture.isValid() || m_sincePicture.elapsed() > oldPicture)
        return tr("No picture from the server");
    return {};
}

void OutputPicture::propose(const ScalingTile* tile, bool looked)
{
    if (looked)
        m_proposed = tile;
    else if (m_proposed == tile)
        m_proposed = nullptr;
    showProposal();
}

/// What would become of the medium. One that its slot scales is let alone by all of them.
void OutputPicture::showProposal()
{
    const bool isNews = m_proposed && !m_isOwnScaling && m_proposed->scaling() != m_scaling &&
                        !m_proposed->geometryOfMedium().picture().isEmpty();
    m_canvas->setProposal(isNews ? std::optional(m_proposed->geometryOfMedium()) : std::nullopt);
    m_medium->setText(
        isNews ? tr("%1 would give %2")
                     .arg(scalingLabel(m_proposed->scaling()), m_proposed->geometryOfMedium().description())
               : m_mediumText);
}

void OutputPicture::choose(const ScalingTile* tile)
{
    const QString chosen = value(OutputModel::ScalingColumn).toString();
    for (ScalingTile* other : std::as_const(m_tiles))
        other->setChecked(other->scaling() == chosen); // until the server has done it
    if (tile->scaling() != chosen)
        m_model->setData(m_model->index(0, OutputModel::ScalingColumn), tile->scaling());
}

} // namespace vantrel
