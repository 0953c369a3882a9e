#include "common/session/mirror/guiplayback.h"

#include "common/media/address/mediautils.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"

#include <QTimer>

namespace vantrel {

using media::MediaUtils;

GUIPlayback::GUIPlayback(AbstractPlaylistProvider* playlistProvider,
                         AbstractMediaLibraryProvider* libraryProvider, QObject* parent)
    : SceneObjectWrapper(QStringLiteral("Playback"), parent)
    , m_playlistProvider(playlistProvider)
    , m_libraryProvider(libraryProvider)
{
    cacheProperties();
    if (playlistProvider) {
        using Provider = AbstractPlaylistProvider;
        connect(playlistProvider, &Provider::playlistAdded, this, &GUIPlayback::refreshMediaData);
        connect(playlistProvider, &Provider::playlistRemoved, this, &GUIPlayback::refreshMediaData);
        connect(playlistProvider, &Provider::reset, this, &GUIPlayback::refreshMediaData);
        connect(playlistProvider, &Provider::entryAdded, this, &GUIPlayback::handleEntryModified);
        connect(playlistProvider, &Provider::entryChanged, this, &GUIPlayback::handleEntryModified);
        connect(playlistProvider, &Provider::entryRemoved, this, &GUIPlayback::handleEntryModified);
    }
    if (libraryProvider) {
        using Provider = AbstractMediaLibraryProvider;
        connect(libraryProvider, &Provider::reset, this, &GUIPlayback::refreshMediaData);
        connect(libraryProvider, &Provider::editsSettled, this, &GUIPlayback::refreshMediaData);
        connect(libraryProvider, &Provider::collectionRemoved, this, &GUIPlayback::handleCollectionModified);
        connect(libraryProvider, &Provider::collectionAdded, this, &GUIPlayback::handleCollectionModified);
        connect(libraryProvider, &Provider::slotAdded, this, &GUIPlayback::handleSlotModified);
        connect(libraryProvider, &Provider::slotChanged, this, &GUIPlayback::handleSlotModified);
        connect(libraryProvider, &Provider::slotRemoved, this, &GUIPlayback::handleSlotModified);
    }
}

GUIPlayback::~GUIPlayback() = default;

void GUIPlayback::cacheProperties()
{
    const auto find = [this](const char* name) { return object()->findProperty(name); };
    m_info = {
        .media = find("media"),
        .heldMedia = find("heldMedia"),
        .nextMedia = find("nextMedia"),
        .inpoint = find("inpoint"),
        .outpoint = find("outpoint"),
        .duration = find("duration"),
        .endAction = find("endAction"),
        .sourceMode = find("sourceMode"),
        .audioDevice = find("audioDevice"),
        .audioOffset = find("audioOffset"),
        .volume = find("volume"),
        .muted = find("muted"),
        .mediaPosition = find("mediaPosition"),
        .fps = find("fps"),
        .state = find("state"),
    };
}

void GUIPlayback::postSetObjectHook()
{
    cacheProperties();
    // The new object may play something already, and then no change of "media" will say so.
    refreshMediaData();
}

void GUIPlayback::notifyPropertyChangedHook(const std::string& name)
{
    const bool isOfMedia = name == "inpoint" || name == "outpoint" || name == "duration";
    if (name == "media" || name == "heldMedia" || (isOfMedia && isHeld()))
        refreshMediaData();
}

void GUIPlayback::setMedia(const QString& url)
{
    setProperty(m_info.media, url);
    refreshMediaData();
}

void GUIPlayback::setInpoint(double seconds)
{
    if (m_inpoint == seconds)
        return;
    m_inpoint = seconds;
    if (m_playingSlot && m_libraryProvider)
        m_libraryProvider->setInpoint(m_playingSlotAddress, seconds);
    else // a point of nothing does not stand
        QTimer::singleShot(0, this, &GUIPlayback::refreshMediaData);
    Q_EMIT inpointChanged();
}

void GUIPlayback::setOutpoint(std::optional<double> seconds)
{
    if (m_outpoint == seconds)
        return;
    m_outpoint = seconds;
    if (m_playingSlot && m_libraryProvider)
        m_libraryProvider->setOutpoint(m_playingSlotAddress, seconds);
    else
        QTimer::singleShot(0, this, &GUIPlayback::refreshMediaData);
    Q_EMIT outpointChanged();
}

void GUIPlayback::setDuration(double seconds)
{
    m_duration = seconds;
    Q_EMIT durationChanged();
}

void GUIPlayback::refreshMediaData()
{
    updateEntry();
    updateSlot();
    notifyOfChangedMediaProperties(updateMediaProperties());
}

void GUIPlayback::handleEntryModified(uint, EntryAddress address)
{
    if (address.isValid() && address == m_playingEntryAddress)
        refreshMediaData();
}

void GUIPlayback::handleSlotModified(MediaAddress address)
{
    if (address.isValid() && address == m_playingSlotAddress)
        refreshMediaData();
}

/// It comes and goes with its slots.
void GUIPlayback::handleCollectionModified(uint collection)
{
    if (m_playingSlotAddress.isValid() && uint(m_playingSlotAddress.collection) == collection)
        refreshMediaData();
}

void GUIPlayback::updateEntry()
{
    const auto parsed = MediaUtils::parsePlaylistAddress(media());
    m_playingEntryAddress = parsed.valid ? parsed.entry : EntryAddress();
    m_playingEntry = parsed.valid && m_playlistProvider
                         ? m_playlistProvider->entry(uint(parsed.playlist), parsed.entry)
                         : nullptr;
}

void GUIPlayback::updateSlot()
{
    m_playingSlotAddress = MediaUtils::parseSlotAddress(m_playingEntry ? m_playingEntry->slotUrl() : media());
    m_playingSlot = m_playingSlotAddress.isValid() && m_libraryProvider
                        ? m_libraryProvider->slot(m_playingSlotAddress)
                        : nullptr;
}

GUIPlayback::PropertyChangeFlags GUIPlayback::updateMediaProperties()
{
    double inpoint = 0;
    std::optional<double> outpoint;
    double duration = 0;
    if (m_playingSlot) {
        inpoint = m_playingSlot->inpoint();
        outpoint = m_playingSlot->outpoint();
        duration = m_playingSlot->duration();
    } else if (isHeld()) {
        inpoint = getProperty<double>(m_info.inpoint);
        duration = getProperty<double>(m_info.duration);
        if (const double end = getProperty<double>(m_info.outpoint); end > 0)
            outpoint = end;
    }
    PropertyChangeFlags flags;
    flags.inpoint = std::exchange(m_inpoint, inpoint) != inpoint;
    flags.outpoint = std::exchange(m_outpoint, outpoint) != outpoint;
    flags.duration = std::exchange(m_duration, duration) != duration;
    return flags;
}

void GUIPlayback::notifyOfChangedMediaProperties(PropertyChangeFlags flags)
{
    // Posted, so that the patch that caused the change ends first and receivers read a consistent set.
    if (flags.inpoint)
        QTimer::singleShot(0, this, &GUIPlayback::inpointChanged);
    if (flags.outpoint || flags.duration)
        QTimer::singleShot(0, this, &GUIPlayback::outpointChanged);
    if (flags.duration)
        QTimer::singleShot(0, this, &GUIPlayback::durationChanged);
}

} // namespace vantrel
