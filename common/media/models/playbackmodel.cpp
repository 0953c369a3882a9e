#include "common/media/models/playbackmodel.h"

#include "common/command/execute.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/session/mirror/guiplayback.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"

#include <QUndoStack>

namespace vantrel {

PlaybackModel::PlaybackModel(QPointer<GUIPlayback> playback, AbstractPlaylistProvider* playlistProvider,
                             QObject* parent)
    : QAbstractTableModel(parent)
    , m_playback(std::move(playback))
    , m_playlistProvider(playlistProvider)
{
    qRegisterMetaType<EndActionMode>("EndActionMode");
    if (m_playlistProvider) {
        using Provider = AbstractPlaylistProvider;
        connect(m_playlistProvider, &Provider::reset, this, &PlaybackModel::onProviderReset);
        connect(m_playlistProvider, &Provider::playlistAdded, this, &PlaybackModel::onPlaylistModified);
        connect(m_playlistProvider, &Provider::playlistChanged, this, &PlaybackModel::onPlaylistModified);
        connect(m_playlistProvider, &Provider::playlistRemoved, this, &PlaybackModel::onPlaylistModified);
        connect(m_playlistProvider, &Provider::entryAdded, this, &PlaybackModel::onEntryModified);
        connect(m_playlistProvider, &Provider::entryChanged, this, &PlaybackModel::onEntryModified);
        connect(m_playlistProvider, &Provider::entryRemoved, this, &PlaybackModel::onEntryModified);
        connect(m_playlistProvider, &Provider::entrySlotsModified, this,
                &PlaybackModel::onEntrySlotsModified);
    }
    if (m_playback) {
        const GUIPlayback* source = m_playback;
        connect(source, &GUIPlayback::mediaPositionChanged, this, &PlaybackModel::onMediaPositionChanged);
        connect(source, &GUIPlayback::fpsChanged, this, &PlaybackModel::onFpsChanged);
        connect(source, &GUIPlayback::outpointChanged, this, &PlaybackModel::onOutpointChanged);
        connect(source, &GUIPlayback::inpointChanged, this, &PlaybackModel::onInpointChanged);
        connect(source, &GUIPlayback::durationChanged, this, &PlaybackModel::onDurationChanged);
        connect(source, &GUIPlayback::mediaChanged, this, &PlaybackModel::onMediaChanged);
        connect(source, &GUIPlayback::endActionChanged, this, &PlaybackModel::onEndActionChanged);
        connect(source, &GUIPlayback::sourceModeChanged, this, &PlaybackModel::onSourceModeChanged);
        connect(source, &GUIPlayback::audioDeviceChanged, this, &PlaybackModel::onAudioDeviceChanged);
        connect(source, &SceneObjectWrapper::reset, this, &PlaybackModel::onReset);
    }
    onReset();
}

PlaybackModel::~PlaybackModel() = default;

void PlaybackModel::setUndoStack(QUndoStack* stack)
{
    m_stack = stack;
}

int PlaybackModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 1;
}

int PlaybackModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PlaybackModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || !m_playback)
        return {};
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (index.column()) {
    case EndActionColumn:
        return static_cast<int>(m_endAction);
    case EndActionModeColumn:
        return static_cast<int>(m_endActionMode);
    case PlaylistNumberColumn:
        return m_playlist.number();
    case EntryAddressColumn:
        return m_entry.address().isValid() ? QString::fromStdString(m_entry.address().toString(true))
                                           : QString();
    case MediaUrlColumn:
        return m_mediaUrl;
    case SourceModeColumn:
        return static_cast<int>(m_sourceMode);
    case AudioDeviceColumn:
        return m_audioDevice;
    case InpointColumn:
        return m_playback->inpoint();
    case OutpointColumn:
        return m_playback->outpoint().value_or(m_playback->duration());
    case DurationColumn:
        return m_playback->duration();
    case MediaPositionColumn:
        return m_playback->mediaPosition();
    case FpsColumn:
        return m_playback->fps();
    default:
        return {};
    }
}

bool PlaybackModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || index.column() > OutpointColumn || !m_playback)
        return false;
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return false;
    switch (index.column()) {
    case EndActionColumn: {
        // A view that echoes what it was just told must not edit the playlist.
        const auto endAction = static_cast<EndAction>(value.toInt());
        if (endAction == m_endAction)
            return true;
        m_playback->setEndAction(endAction);
        if (m_sourceMode == SourceMode::Playlist)
            setEndActionCommand(endAction);
        return true;
    }
    case PlaylistNumberColumn:
        m_playlist = {};
        emitCellChanged(PlaylistNumberColumn);
        return true;
    case EntryAddressColumn:
        m_entry = {};
        emitCellChanged(EntryAddressColumn);
        return true;
    case AudioDeviceColumn:
        m_playback->setAudioDevice(static_cast<AudioPlaybackDevice>(value.toInt()));
        return true;
    case InpointColumn:
        m_playback->setInpoint(value.toDouble());
        return true;
    case OutpointColumn:
        m_playback->setOutpoint(value.toDouble());
        return true;
    default:
        return false;
    }
}

QVariant PlaybackModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section == EndActionColumn)
        return tr("End action");
    return {};
}

Qt::ItemFlags PlaybackModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const int column = index.column();
    if (column == EndActionColumn || (column >= AudioDeviceColumn && column <= OutpointColumn))
        flags |= Qt::ItemIsEditable;
    return flags;
}

void PlaybackModel::setSourceMode(int mode)
{
    m_sourceMode = static_cast<SourceMode>(mode);
    emitCellChanged(SourceModeColumn);
    if (updateEndActionMode())
        emitCellChanged(EndActionModeColumn);
}

void PlaybackModel::onReset()
{
    if (!m_playback)
        return;
    m_endAction = m_playback->endAction();
    m_audioDevice = static_cast<int>(m_playback->audioDevice());
    m_sourceMode = m_playback->sourceMode();
    updateEndActionMode();
    setMedia(m_playback->media());
    for (int column = 0; column < ColumnCount; ++column)
        emitCellChanged(column);
}

void PlaybackModel::onProviderReset()
{
    setMedia(m_mediaUrl);
}

void PlaybackModel::onPlaylistModified(uint playlist)
{
    if (m_isEntryPlaying && playlist != 0 && m_playlist.number() != 0)
        updatePlayingEntry(m_playlist.number(), m_entry.address());
}

void PlaybackModel::onEntryModified(uint playlist, EntryAddress address)
{
    if (m_isEntryPlaying && playlist == m_playlist.number() && address == m_entry.address())
        updatePlayingEntry(playlist, address);
}

void PlaybackModel::onEntrySlotsModified(const QList<std::pair<uint, EntryAddress>>& entries)
{
    for (const auto& [playlist, address] : entries)
        onEntryModified(playlist, address);
}

void PlaybackModel::onSlotModified(MediaAddress address)
{
    if (m_sourceMode != SourceMode::None && address == m_slot.address())
        updatePlayingSlot(m_slot.address());
}

void PlaybackModel::refreshSlot()
{
    if (m_sourceMode != SourceMode::None)
        updatePlayingSlot(m_slot.address());
}

void PlaybackModel::onMediaChanged()
{
    if (m_playback)
        setMedia(m_playback->media());
}

void PlaybackModel::onEndActionChanged()
{
    if (m_playback)
        m_endAction = m_playback->endAction();
    emitCellChanged(EndActionColumn);
}

void PlaybackModel::onSourceModeChanged()
{
    if (m_playback)
        setSourceMode(static_cast<int>(m_playback->sourceMode()));
}

void PlaybackModel::onAudioDeviceChanged()
{
    if (m_playback)
        m_audioDevice = static_cast<int>(m_playback->audioDevice());
    emitCellChanged(AudioDeviceColumn);
}

void PlaybackModel::onInpointChanged()
{
    emitCellChanged(InpointColumn);
}

void PlaybackModel::onOutpointChanged()
{
    emitCellChanged(OutpointColumn);
}

void PlaybackModel::onDurationChanged()
{
    emitCellChanged(DurationColumn);
}

void PlaybackModel::onMediaPositionChanged()
{
    emitCellChanged(MediaPositionColumn);
}

void PlaybackModel::onFpsChanged()
{
    emitCellChanged(FpsColumn);
}

void PlaybackModel::setMedia(const QString& url)
{
    m_mediaUrl = url;
    MediaSourceParser parser;
    parser.parseString(url.toStdString());
    switch (parser.getSourceMode()) {
    case SourceMode::Slot:
        clearPlayingEntry();
        updatePlayingSlot(parser.getMediaAddress());
        break;
    case SourceMode::Playlist:
        updatePlayingEntry(static_cast<uint>(parser.getPlaylistNumber()), parser.getEntryAddress());
        break;
    default:
        clearPlayingEntry();
        break;
    }
}

/// The end action set while a playlist plays is also the entry's from then on.
void PlaybackModel::setEndActionCommand(EndAction endAction)
{
    if (!m_isEntryPlaying)
        return;
    const MediaLibrary* library = m_playlistProvider->mediaLibrary();
    const auto number = static_cast<int>(m_playlist.number());
    if (!library || !library->findPlaylistEntry(number, m_entry.address())) {
        qErrnoWarning("Invalid implementation. Entry missing from library.");
        return;
    }
    const auto change = [endAction](PlaylistEntry& entry) { entry.setEndAction(endAction); };
    tryExecute<EditPlaylistEntryCommand>(m_stack, library, number, QList{m_entry.address()}, change);
}

bool PlaybackModel::updateEndActionMode()
{
    EndActionMode mode = DISABLED;
    if (m_sourceMode == SourceMode::Slot)
        mode = SLOT;
    else if (m_sourceMode == SourceMode::Playlist)
        mode = ENTRY;
    return std::exchange(m_endActionMode, mode) != mode;
}

void PlaybackModel::updatePlayingEntry(uint playlist, const EntryAddress& address)
{
    if (!m_playlistProvider)
        return;
    const auto guiPlaylist = m_playlistProvider->playlist(playlist);
    const auto entry = m_playlistProvider->entry(playlist, address);
    const auto slot = m_playlistProvider->entrySlot(playlist, address);
    if (!guiPlaylist || !entry || !slot) {
        clearPlayingEntry();
        return;
    }
    m_isEntryPlaying = true;
    m_playlist = *guiPlaylist;
    m_entry = *entry;
    m_slot = *slot;
    emitCellChanged(PlaylistNumberColumn);
    emitCellChanged(EntryAddressColumn);
    emitCellChanged(MediaUrlColumn);
}

void PlaybackModel::updatePlayingSlot(const MediaAddress& address)
{
    MediaLibrary* library = m_playlistProvider ? m_playlistProvider->mediaLibrary() : nullptr;
    const MediaSlot* slot = library ? library->findSlot(address.collection, address.slot) : nullptr;
    // The address is kept without its slot, so that a slot that comes later is recognised.
    m_slot = slot ? GuiMediaSlot(address, *slot) : GuiMediaSlot();
    m_slot.setAddress(address);
    emitCellChanged(MediaUrlColumn);
}

void PlaybackModel::clearPlayingEntry()
{
    m_playlist = {};
    m_entry = {};
    m_isEntryPlaying = false;
    emitCellChanged(PlaylistNumberColumn);
    emitCellChanged(EntryAddressColumn);
    emitCellChanged(MediaUrlColumn);
}

void PlaybackModel::emitCellChanged(int column)
{
    const QModelIndex cell = index(0, column);
    Q_EMIT dataChanged(cell, cell);
}

} // namespace vantrel
