#include "common/playback/playbackwidget.h"

#include "common/command/execute.h"
#include "common/command/playback/mutecommand.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/playback/channelhint.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/endpointtimecodes.h"
#include "common/playback/levelmeter.h"
#include "common/playback/mutebutton.h"
#include "common/playback/picturenotice.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbacktimecodes.h"
#include "common/playback/playbackwidgetfooter.h"
#include "common/playback/playbackwidgetheader.h"
#include "common/playback/seekslider.h"
#include "common/playback/volumebinding.h"
#include "common/playback/volumecontrolpopup.h"
#include "common/session/link/previewthread.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/objectmodelmapper.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/binding/propertiesmapper.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/blockedreason.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/views/playlist/nextentrylabel.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/scene.h"

#include <QEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace vantrel {

PlaybackWidget::PlaybackWidget(PlaybackViewMode viewMode, Session* session, QWidget* parent)
    : ZTFrame(parent)
    , m_session(session)
    , m_model(viewMode == Preview ? session->previewPlaybackModel() : session->programPlaybackModel())
    , m_playback(viewMode == Preview ? session->sceneObjectProvider()->previewPlayback()
                                     : session->sceneObjectProvider()->programPlayback())
    , m_viewMode(viewMode)
    , m_propertiesMapper(new PropertiesMapper(this))
{
    setDynamicStyle(this, "class", QStringLiteral("panel"));
    setDynamicStyle(this, "mode", isPreview() ? QStringLiteral("preview") : QStringLiteral("program"));
    setDynamicStyle(this, "hasfocus", QStringLiteral("false"));
    installEventFilter(this);
    setAccessibleName(isPreview() ? tr("Preview") : tr("Program"));
    setFocusPolicy(Qt::StrongFocus);
    createChildren();
    layOut();
    nameChildren();
    connectChildren();
    connectSources();

    auto* mapper = new ObjectModelMapper(m_model, this);
    mapper->addMapping(m_footer->endAction(), QStringLiteral("endAction"), PlaybackModel::EndActionColumn);
    mapper->addMapping(m_footer->endAction(), QStringLiteral("endActionMode"),
                       PlaybackModel::EndActionModeColumn);
    mapper->toFirst();

    for (int column = PlaybackModel::MediaUrlColumn; column < PlaybackModel::ColumnCount; ++column)
        applyCell(column, m_model->index(0, column).data());
    showPositionAnew();
    handleMediaChanged();
    refreshPlaybackControls();
    setLocked(!isPreview());
}

PlaybackWidget::~PlaybackWidget() = default;

void PlaybackWidget::createChildren()
{
    m_header = new PlaybackWidgetHeader(m_viewMode, this);
    m_preview = new PlaybackPreview(this);
    m_hint = new ChannelHint(m_viewMode, m_session->hotkeys(), m_preview);
    m_notice = new PictureNotice(m_viewMode, m_preview);
    m_timecodes = new PlaybackTimecodes(this);
    m_timecodes->setViewMode(m_viewMode);
    m_endpoints = new EndpointTimecodes(this);
    m_slider = new SeekSlider(this);
    m_controls = new PlaybackControls(m_viewMode, m_session->getQUndoStack(), this);
    m_durationEdit = new DurationEditWidget(this);
    m_footer = new PlaybackWidgetFooter(m_viewMode, this);
    m_volume = new VolumeBinding(m_footer->volumeControlPopup(), m_session->getQUndoStack(), this);
    m_slider->setInpointOutpointEnabled(isPreview());
    setHotkeyTip(m_slider, tr("Seek bar: drag the playhead, or step a frame"),
                 {QStringLiteral("prev_frame"), QStringLiteral("next_frame")});
    if (!isPreview()) {
        m_slider->setMarkerColor(colors::getColor(colors::Zt_red));
        auto* next = new NextEntryLabel(m_session, m_timecodes);
        next->setObjectName(QStringLiteral("Program-PlaybackWidget-Next"));
        next->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        next->setIndent(spacing::normal);
        m_timecodes->setMiddle(next);
    }
    m_durationEdit->setEnabled(isPreview());
}

void PlaybackWidget::layOut()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::tight, 0, 0);
    layout->setSpacing(0);
    // The footer reaches from edge to edge, everything else stands in one column.
    auto* column = new QVBoxLayout;
    column->setContentsMargins(spacing::normal, 0, spacing::normal, spacing::tight);
    column->setSpacing(spacing::tight);
    column->addWidget(m_header);
    column->addWidget(m_preview, 1);
    for (QWidget* part :
         std::initializer_list<QWidget*>{m_timecodes, m_slider, m_endpoints, m_durationEdit, m_controls})
        column->addWidget(part);
    layout->addLayout(column, 1);
    layout->addWidget(m_footer);
}

void PlaybackWidget::setColumnStep(ColumnStep step)
{
    m_header->setColumnStep(step);
    m_controls->setColumnStep(step);
    m_durationEdit->setColumnStep(step);
    m_footer->setColumnStep(step);
    m_step = step;
    lineUp();
}

/// Of the end points and a still's duration one is shown: where there is room, both take the same height, so
/// that a still on one channel stands in line with a video on the other.
void PlaybackWidget::lineUp()
{
    const int height = m_step == ColumnStep::Wide ? m_durationEdit->sizeHint().height() : 0;
    m_endpoints->setMinimumHeight(height);
}

int PlaybackWidget::heightForPicture(int pictureHeight) const
{
    return sizeHint().height() - m_preview->sizeHint().height() + pictureHeight;
}

int PlaybackWidget::pictureHeight() const
{
    return m_preview->heightForWidth(m_preview->width());
}

void PlaybackWidget::nameChildren()
{
    const QString prefix = (isPreview() ? QStringLiteral("Preview") : QStringLiteral("Program")) +
                           QStringLiteral("-PlaybackWidget-");
    setObjectName(prefix.chopped(1));
    m_slider->setObjectNames(prefix + QStringLiteral("SeekSlider"));
    m_preview->setObjectName(prefix + QStringLiteral("PreviewWidget"));
    for (QWidget* watched :
         std::initializer_list<QWidget*>{m_preview, m_timecodes, m_endpoints, m_durationEdit})
        keepUncovered(watched);
    if (!isPreview())
        neverCover(m_preview);
    m_notice->setObjectName(prefix + QStringLiteral("Notice"));
    m_hint->setObjectName(prefix + QStringLiteral("Hint"));
    m_timecodes->setObjectNames(prefix + QStringLiteral("PlaybackTimecodes"));
    m_endpoints->setObjectNames(prefix + QStringLiteral("EndpointTimecodes"));
    m_footer->setObjectNames(prefix + QStringLiteral("Footer"));
    m_durationEdit->setObjectNames(prefix + QStringLiteral("DurationEdit"));
    m_header->setObjectNames(prefix + QStringLiteral("Header"));
}

void PlaybackWidget::connectChildren()
{
    connect(m_durationEdit, &DurationEditWidget::durationEdited, this,
            &PlaybackWidget::handleDurationChanged);
    connect(m_controls, &PlaybackControls::setInpoint, m_slider, &SeekSlider::handleInpointSetting);
    connect(m_controls, &PlaybackControls::setOutpoint, m_slider, &SeekSlider::handleOutpointSetting);
    connect(m_slider, &SeekSlider::inpointSet, this, &PlaybackWidget::handleInpointSet);
    connect(m_slider, &SeekSlider::outpointSet, this, &PlaybackWidget::handleOutpointSet);
    connect(m_slider, &SeekSlider::seekPosition, m_controls, &PlaybackControls::handleSeekPosition);
    connect(m_slider, &SeekSlider::seekStarting, m_controls, &PlaybackControls::handleSeekStarting);
    connect(m_slider, &SeekSlider::seekEnding, m_controls, &PlaybackControls::handleSeekEnding);
    connect(m_controls, &PlaybackControls::stateChangeDone, m_timecodes,
            [this] { m_timecodes->setState(m_controls->state()); });
    const auto showRepeat = [this] {
        const EndActionWidget* end = m_footer->endAction();
        m_header->setRepeats(end->endAction() == static_cast<int>(EndAction::Repeat) &&
                             end->endActionMode() != PlaybackModel::DISABLED);
    };
    connect(m_footer->endAction(), &EndActionWidget::endActionChanged, m_header, showRepeat);
    connect(m_footer->endAction(), &EndActionWidget::endActionModeChanged, m_header, showRepeat);
    if (const MuteButton* mute = m_header->muteButton())
        connect(mute, &QAbstractButton::toggled, m_footer->levelMeter(), &LevelMeter::setMuted);
    connect(m_preview, &PlaybackPreview::dragAndDropEntry, this, &PlaybackWidget::handleDragAndDrop);
    connect(m_header, &PlaybackWidgetHeader::locked, this, &PlaybackWidget::setLocked);
    // Opened once is not opened for good: what is on air after that may be another server's.
    if (IconButton* lock = m_header->lockButton())
        connect(m_session, &Session::connected, lock, [lock] { lock->setChecked(true); });
}

void PlaybackWidget::setObject(Object* object, Scene* scene)
{
    m_propertiesMapper->setObject(scene, object);
    m_controls->setObject(object);
    if (!object) {
        connectMute({});
        m_volume->setPath({});
        m_preview->setSource({}, -1);
        m_footer->levelMeter()->setSource({});
        m_notice->levels()->setSource({});
        m_footer->levelMeter()->clear();
        setIsResourceConstrained(false);
        return;
    }
    m_propertiesMapper->addMapping(QStringLiteral("state"), m_controls, "state");
    m_propertiesMapper->addMapping(QStringLiteral("sourceMode"), m_model, "sourceMode");
    m_volume->setPath({});
    m_propertiesMapper->addMapping(QStringLiteral("volume"), m_volume, "volume");
    if (m_header->muteButton())
        m_propertiesMapper->addMapping(QStringLiteral("muted"), m_header->muteButton(), "muted");
    m_propertiesMapper->addMapping(QStringLiteral("resourceConstrained"), this, "isResourceConstrained");

    Path path;
    if (scene)
        scene->pathOf(object, path);
    connectMute(path);
    m_volume->setPath(path);
    m_preview->setSource(path.toString(), 0);
    m_footer->levelMeter()->setSource(path.toString());
    m_notice->levels()->setSource(path.toString());
}

void PlaybackWidget::connectMute(const Path& objectPath)
{
    MuteButton* button = m_header->muteButton();
    if (!button)
        return;
    disconnect(button, &MuteButton::muteStateChanged, this, nullptr);
    connect(button, &MuteButton::muteStateChanged, this, [this, button, objectPath](bool muted) {
        if (button->isMuted() != muted)
            button->setMuted(muted);
        tryExecute<MuteCommand>(m_session->getQUndoStack(), objectPath, muted);
    });
}

void PlaybackWidget::setIsResourceConstrained(bool constrained)
{
    if (!isPreview() || constrained == m_isResourceConstrained)
        return;
    m_isResourceConstrained = constrained;
    m_preview->setResourceConstrained(constrained);
    if (m_resourceStatusProvider)
        m_resourceStatusProvider->setIsConstrained(m_viewMode, constrained);
    Q_EMIT isResourceConstrainedChanged();
}

void PlaybackWidget::setHasValidMedia(bool valid)
{
    m_slider->setEnabled(valid);
    m_hasValidMedia = valid;
    m_hasTransport = valid;
    updateTransport();
}

void PlaybackWidget::setBlocked(const QString& reason)
{
    m_blocked = reason;
    updateTransport();
}

void PlaybackWidget::setLocked(bool locked)
{
    m_isLocked = locked;
    updateTransport();
}

void PlaybackWidget::updateTransport()
{
    const QString held = m_isLocked
                             ? tr("Locked, so that no stray click moves what is on air. Open the lock above.")
                             : QString();
    const QString reason = m_blocked.isEmpty() ? held : m_blocked;
    m_controls->setEnabled(m_hasTransport && !m_isLocked);
    m_controls->setBlocked(reason);
    m_slider->setLocked(m_isLocked || !m_hasValidMedia); // what the library does not know is only seen
    setBlockedReason(m_slider, reason);
}

MuteButton* PlaybackWidget::muteButton() const
{
    return m_header->muteButton();
}

IconButton* PlaybackWidget::lockButton() const
{
    return m_header->lockButton();
}

double PlaybackWidget::modelSeconds(int column) const
{
    return m_model->index(0, column).data().toDouble();
}

void PlaybackWidget::resetEndPoints()
{
    m_slider->setOutpoint(modelSeconds(PlaybackModel::OutpointColumn));
    m_slider->setInpoint(modelSeconds(PlaybackModel::InpointColumn));
}

void PlaybackWidget::onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex&, const QList<int>&)
{
    if (topLeft.column() == PlaybackModel::MediaPositionColumn) // comes from the playback itself
        return;
    const QVariant value = topLeft.data();
    if (value.isValid() && topLeft.column() < PlaybackModel::ColumnCount)
        applyCell(topLeft.column(), value);
}

void PlaybackWidget::applyCell(int column, const QVariant& value)
{
    const double seconds = value.toDouble();
    switch (column) {
    case PlaybackModel::PlaylistNumberColumn:
    case PlaybackModel::EntryAddressColumn:
    case PlaybackModel::ReservedColumn:
        refreshPlaybackControls();
        break;
    case PlaybackModel::MediaUrlColumn:
        if (value.toString() != m_mediaAddress)
            m_preview->expectNewMedia();
        m_mediaAddress = value.toString();
        updateMediaAddress();
        m_header->duration()->setTime(modelSeconds(PlaybackModel::DurationColumn));
        resetEndPoints();
        refreshPlaybackControls();
        break;
    case PlaybackModel::InpointColumn:
        m_endpoints->inpoint()->setTime(seconds);
        m_slider->setInpoint(seconds);
        break;
    case PlaybackModel::OutpointColumn:
        m_endpoints->outpoint()->setTime(seconds);
        m_timecodes->setOutpoint(seconds);
        resetEndPoints(); // both: the in point came first, and was limited by the earlier out point
        break;
    case PlaybackModel::DurationColumn:
        m_header->duration()->setTime(seconds);
        m_slider->setDuration(seconds);
        resetEndPoints();
        refreshPlaybackControls();
        break;
    case PlaybackModel::FpsColumn:
        m_header->duration()->setFps(seconds);
        m_timecodes->setFps(seconds);
        m_endpoints->inpoint()->setFps(seconds);
        m_endpoints->outpoint()->setFps(seconds);
        break;
    default:
        break;
    }
    // The slider limits the position to its range: a range that comes late must not leave it at the start.
    const bool isRange = column >= PlaybackModel::InpointColumn && column <= PlaybackModel::DurationColumn;
    if (isRange || column == PlaybackModel::MediaUrlColumn)
        m_slider->setPosition(modelSeconds(PlaybackModel::MediaPositionColumn));
}

void PlaybackWidget::showPosition(double seconds)
{
    m_timecodes->setPosition(seconds);
    m_slider->setPosition(seconds);
}

void PlaybackWidget::showPositionAnew()
{
    showPosition(modelSeconds(PlaybackModel::MediaPositionColumn));
}

void PlaybackWidget::handleInpointSet(double seconds)
{
    m_model->setData(m_model->index(0, PlaybackModel::InpointColumn), seconds, Qt::EditRole);
}

void PlaybackWidget::handleOutpointSet(double seconds)
{
    m_model->setData(m_model->index(0, PlaybackModel::OutpointColumn), seconds, Qt::EditRole);
}

void PlaybackWidget::mousePressEvent(QMouseEvent* event)
{
    event->accept(); // it gave the channel the focus, which the window would take away again
}

bool PlaybackWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::FocusIn)
        setDynamicStyle(this, "hasfocus", QStringLiteral("true"));
    else if (watched == this && event->type() == QEvent::FocusOut)
        setDynamicStyle(this, "hasfocus", QStringLiteral("false"));
    return ZTFrame::eventFilter(watched, event);
}

} // namespace vantrel
