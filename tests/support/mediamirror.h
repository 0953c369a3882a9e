#pragma once

#include "common/media/medialibraryapi.h"
#include "common/media/medialibrarymodel.h"
#include "common/media/medialibraryprovider.h"
#include "common/media/playlistprovider.h"
#include "tarn/media/medialibrary.h"

#include <QNetworkAccessManager>

namespace vantrel::test {

/// A library with the client, the model and the providers wired as the session wires them; patches come in
/// where the event stream would bring them.
class MediaMirror
{
public:
    explicit MediaMirror(Ref<MediaLibrary> start)
        : library(std::move(start))
        , api(QStringLiteral("127.0.0.1"), &m_manager, library.get())
        , provider(library)
        , playlists(library, &provider)
        , model(library.get(), nullptr, nullptr)
    {
        model.setMediaLibaryProvider(&provider);
        using Api = MediaLibraryApi;
        const auto wire = [this](auto signal, auto modelSlot, auto providerSlot) {
            QObject::connect(&api, signal, &model, modelSlot);
            QObject::connect(&api, signal, &provider, providerSlot);
        };
        wire(&Api::mediaLibraryReplaced, &MediaLibraryModel::reset, &MediaLibraryProvider::onReset);
        wire(&Api::mediaCollectionChanged, &MediaLibraryModel::onCollectionChanged,
             &MediaLibraryProvider::onCollectionChanged);
        wire(&Api::mediaCollectionAdded, &MediaLibraryModel::onCollectionAdded,
             &MediaLibraryProvider::onCollectionAdded);
        wire(&Api::mediaCollectionRemoved, &MediaLibraryModel::onCollectionRemoved,
             &MediaLibraryProvider::onCollectionRemoved);
        wire(&Api::mediaAdded, &MediaLibraryModel::onMediaAdded, &MediaLibraryProvider::onSlotAdded);
        wire(&Api::mediaChanged, &MediaLibraryModel::onMediaChanged, &MediaLibraryProvider::onSlotChanged);
        wire(&Api::mediaRemoved, &MediaLibraryModel::onMediaRemoved, &MediaLibraryProvider::onSlotRemoved);
        const auto toPlaylists = [this](auto* sender, auto signal, auto slot) {
            QObject::connect(sender, signal, &playlists, slot);
        };
        toPlaylists(&api, &Api::playlistAdded, &PlaylistProvider::onPlaylistAdded);
        toPlaylists(&api, &Api::playlistChanged, &PlaylistProvider::onPlaylistChanged);
        toPlaylists(&api, &Api::playlistRemoved, &PlaylistProvider::onPlaylistRemoved);
        toPlaylists(&api, &Api::playlistEntryAdded, &PlaylistProvider::onEntryAdded);
        toPlaylists(&api, &Api::playlistEntryChanged, &PlaylistProvider::onEntryChanged);
        toPlaylists(&api, &Api::playlistEntryRemoved, &PlaylistProvider::onEntryRemoved);
        using Provider = AbstractMediaLibraryProvider;
        auto* media = static_cast<Provider*>(&provider);
        toPlaylists(media, &Provider::reset, &PlaylistProvider::onReset);
        toPlaylists(media, &Provider::slotAdded, &PlaylistProvider::onSlotModified);
        toPlaylists(media, &Provider::slotChanged, &PlaylistProvider::onSlotModified);
        toPlaylists(media, &Provider::slotRemoved, &PlaylistProvider::onSlotModified);
        load();
    }

    /// As after the first fetch of a connection.
    void load() { Q_EMIT api.mediaLibraryReplaced(); }

    /// Takes over what an edit of a copy changes, as a patch.
    template <typename Edit>
    void edit(Edit&& change)
    {
        const auto edited = makeRef<MediaLibrary>(*library);
        change(*edited);
        Patch patch;
        Patch::diff(library->toJson(), edited->toJson(), patch);
        api.applyMediaLibraryPatch(patch);
    }

private:
    QNetworkAccessManager m_manager;

public:
    Ref<MediaLibrary> library;
    MediaLibraryApi api;
    MediaLibraryProvider provider;
    PlaylistProvider playlists;
    MediaLibraryModel model;
};

} // namespace vantrel::test
