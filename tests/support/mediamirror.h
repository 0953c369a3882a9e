#pragma once

#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
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
        wire(api);
        using Provider = AbstractMediaLibraryProvider;
        auto* media = static_cast<Provider*>(&provider);
        toPlaylists(media, &Provider::reset, &PlaylistProvider::onReset);
        toPlaylists(media, &Provider::slotAdded, &PlaylistProvider::onSlotModified);
        toPlaylists(media, &Provider::slotChanged, &PlaylistProvider::onSlotModified);
        toPlaylists(media, &Provider::slotRemoved, &PlaylistProvider::onSlotModified);
        load();
    }

    /// Lets the model and the providers follow a client.
    void wire(MediaLibraryApi& source)
    {
        using Api = MediaLibraryApi;
        const auto both = [this, &source](auto signal, auto modelSlot, auto providerSlot) {
            QObject::connect(&source, signal, &model, modelSlot);
            QObject::connect(&source, signal, &provider, providerSlot);
        };
        both(&Api::mediaLibraryReplaced, &MediaLibraryModel::reset, &MediaLibraryProvider::onReset);
        both(&Api::mediaCollectionChanged, &MediaLibraryModel::onCollectionChanged,
             &MediaLibraryProvider::onCollectionChanged);
        both(&Api::mediaCollectionAdded, &MediaLibraryModel::onCollectionAdded,
             &MediaLibraryProvider::onCollectionAdded);
        both(&Api::mediaCollectionRemoved, &MediaLibraryModel::onCollectionRemoved,
             &MediaLibraryProvider::onCollectionRemoved);
        both(&Api::mediaAdded, &MediaLibraryModel::onMediaAdded, &MediaLibraryProvider::onSlotAdded);
        both(&Api::mediaChanged, &MediaLibraryModel::onMediaChanged, &MediaLibraryProvider::onSlotChanged);
        both(&Api::mediaRemoved, &MediaLibraryModel::onMediaRemoved, &MediaLibraryProvider::onSlotRemoved);
        QObject::connect(&source, &Api::changesStarted, &model, &MediaLibraryModel::onChangesStarted);
        QObject::connect(&source, &Api::changesFinished, &model, &MediaLibraryModel::onChangesFinished);
        toPlaylists(&source, &Api::changesStarted, &PlaylistProvider::onChangesStarted);
        toPlaylists(&source, &Api::changesFinished, &PlaylistProvider::onChangesFinished);
        toPlaylists(&source, &Api::playlistAdded, &PlaylistProvider::onPlaylistAdded);
        toPlaylists(&source, &Api::playlistChanged, &PlaylistProvider::onPlaylistChanged);
        toPlaylists(&source, &Api::playlistRemoved, &PlaylistProvider::onPlaylistRemoved);
        toPlaylists(&source, &Api::playlistEntryAdded, &PlaylistProvider::onEntryAdded);
        toPlaylists(&source, &Api::playlistEntryChanged, &PlaylistProvider::onEntryChanged);
        toPlaylists(&source, &Api::playlistEntryRemoved, &PlaylistProvider::onEntryRemoved);
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
    template <typename Sender, typename Signal, typename Slot>
    void toPlaylists(Sender* sender, Signal signal, Slot slot)
    {
        QObject::connect(sender, signal, &playlists, slot);
    }

    QNetworkAccessManager m_manager;

public:
    Ref<MediaLibrary> library;
    MediaLibraryApi api;
    MediaLibraryProvider provider;
    PlaylistProvider playlists;
    MediaLibraryModel model;
};

} // namespace vantrel::test
